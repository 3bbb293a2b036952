#pragma once

#include <filesystem>

namespace tavik {

/// Keeps other builds out of a directory while it lives. Throws `BuildError` when another build is
/// at work there, or the directory cannot be opened.
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
    /// Removes what an earlier, killed build left aside.
    explicit AsideFile(std::filesystem::path target);
    /// Removes the file aside unless it was committed.
    ~AsideFile();
    AsideFile(const AsideFile&) = delete;
    AsideFile& operator=(const AsideFile&) = delete;

    const std::filesystem::path& path() const { return aside; }

    /// Forces the file to disk and puts it in the place of the target. Throws `BuildError`.
    void commit();

private:
    void removeAside() const noexcept;

    std::filesystem::path target;
    std::filesystem::path aside;
    bool isCommitted = false;
};

} // namespace tavik
