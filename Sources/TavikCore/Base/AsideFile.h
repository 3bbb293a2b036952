#pragma once

#include <filesystem>
#include <stdexcept>
#include <string_view>

namespace tavik {

/// A file that cannot be written; `what()` is a Chinese sentence that says what to do.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Keeps other programs of Tavik from writing files in a directory while it lives. Throws
/// `FileError` when one is at work there, or the directory cannot be opened.
class DirectoryLock {
public:
    explicit DirectoryLock(const std::filesystem::path& directory);
    ~DirectoryLock();
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;

private:
    int descriptor;
};

/// A file that is written aside and takes its place only when it is whole: readers of `target` see
/// the old file or the new one, whatever happens in between. Needs a `DirectoryLock`.
class AsideFile {
public:
    /// Removes what an earlier, killed program left aside. Throws `FileError` when something that
    /// is no file stands in the place.
    explicit AsideFile(const std::filesystem::path& target);
    /// Removes the file aside unless it was committed.
    ~AsideFile();
    AsideFile(const AsideFile&) = delete;
    AsideFile& operator=(const AsideFile&) = delete;

    const std::filesystem::path& path() const { return aside; }

    /// Where the file aside of `target` lies.
    static std::filesystem::path placeFor(const std::filesystem::path& target);

    /// Makes `contents` all that is in the file aside. Throws `FileError`.
    void write(std::string_view contents) const;

    /// Forces the file to disk and puts it in the place of the target. Throws `FileError`.
    void commit();

private:
    void removeAside() const noexcept;

    std::filesystem::path target;
    std::filesystem::path aside;
    bool isCommitted = false;
};

/// The directory in which `file` lies.
std::filesystem::path directoryOf(const std::filesystem::path& file);

/// Makes `contents` all that is in `file`, by way of an `AsideFile`. Throws `FileError`.
void replaceFile(const std::filesystem::path& file, std::string_view contents);

} // namespace tavik
