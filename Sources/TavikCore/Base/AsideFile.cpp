#include "Base/AsideFile.h"

#include "Base/Links.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <system_error>

namespace tavik {
namespace {

[[noreturn]] void throwFailure(const std::string& what, const std::filesystem::path& path) {
    const std::string reason = std::generic_category().message(errno);
    throw FileError(what + ' ' + path.string() + " 失败（" + reason + "）。请检查磁盘空间和权限");
}

/// An open file or directory, closed at the end of the scope.
class Descriptor {
public:
    Descriptor(const std::filesystem::path& path, int flags)
        : number(open(path.c_str(), flags | O_CLOEXEC)) {
        if (number < 0) throwFailure("打开", path);
    }

    ~Descriptor() { close(number); }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    void forceToDisk(const std::filesystem::path& path) const {
        if (fsync(number) != 0) throwFailure("写入", path);
    }

private:
    int number;
};

/// Where a file at `path` really lies. Throws when something else is there.
std::filesystem::path placeOf(const std::filesystem::path& path) {
    std::filesystem::path place = followingLinks(path);
    std::error_code error;
    const auto status = std::filesystem::status(place, error);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw FileError(path.string() + " 不是普通文件，不能写在那里，请换一个文件名");
    return place;
}

} // namespace

DirectoryLock::DirectoryLock(const std::filesystem::path& directory)
    : descriptor(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (descriptor < 0) throwFailure("打开目录", directory);
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) return;
    close(descriptor);
    throw FileError("另一个程序正在 " + directory.string() + " 里写文件，请等它结束");
}

DirectoryLock::~DirectoryLock() {
    close(descriptor);
}

AsideFile::AsideFile(const std::filesystem::path& target)
    : target(placeOf(target)), aside(placeFor(target)) {
    removeAside();
}

std::filesystem::path AsideFile::placeFor(const std::filesystem::path& target) {
    return placeOf(target).string() + ".tavik-part";
}

AsideFile::~AsideFile() {
    if (!isCommitted) removeAside();
}

void AsideFile::write(std::string_view contents) const {
    std::ofstream stream(aside, std::ios::binary);
    stream << contents;
    stream.close();
    if (!stream) throwFailure("写入", target);
}

void AsideFile::commit() {
    Descriptor(aside, O_RDONLY).forceToDisk(aside);
    if (rename(aside.c_str(), target.c_str()) != 0) throwFailure("写入", target);
    isCommitted = true;
    Descriptor(directoryOf(target), O_RDONLY | O_DIRECTORY).forceToDisk(target);
}

void AsideFile::removeAside() const noexcept {
    std::error_code ignored;
    for (const char* const ending : {"", "-journal", "-wal", "-shm"})
        std::filesystem::remove(aside.string() + ending, ignored);
}

std::filesystem::path directoryOf(const std::filesystem::path& file) {
    return file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
}

void replaceFile(const std::filesystem::path& file, std::string_view contents) {
    const DirectoryLock lock(directoryOf(file));
    AsideFile aside(file);
    aside.write(contents);
    aside.commit();
}

} // namespace tavik
