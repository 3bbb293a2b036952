#include "Vocabulary/EmptiedBook.h"

#include "Base/AsideFile.h"
#include "Base/Links.h"
#include "Vocabulary/BookFiles.h"

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace tavik {
namespace {

/// 0 when there is no such file.
std::uintmax_t sizeOf(const std::string& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return error ? 0 : size;
}

} // namespace

bool isEmptiedBook(const std::string& path) {
    // SQLite, too, follows links before it looks for the log.
    const std::string place = followingLinks(path).string();
    // The log first: a program that is creating the book writes the file before it.
    return sizeOf(place + "-wal") > 0 && sizeOf(place) == 0;
}

EmptiedBookError::EmptiedBookError(const std::string& path)
    : std::runtime_error("生词本 " + path + " 不见了或被清空了，但旁边的 " + path
                         + "-wal 里还有数据；为了不丢失它们，没有打开生词本。"
                           "请先把它们复制到别处，再用 tavik-cli restore 从备份恢复") {}

std::filesystem::path setEmptiedBookAside(const std::string& path, Date now) {
    const std::filesystem::path place = followingLinks(path);
    const DirectoryLock lock(directoryOf(place));
    if (isInUse(place)) throw FileError("另一个程序正在使用生词本 " + path + "，请先退出它");
    std::filesystem::path kept = placeBeside(place, "emptied", now);
    MovedBook(place, kept).keep();
    return kept;
}

} // namespace tavik
