#include "Vocabulary/EmptiedBook.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

namespace tavik {
namespace {

std::optional<std::uintmax_t> sizeOf(const std::string& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error) return std::nullopt;
    return size;
}

} // namespace

bool isEmptiedBook(const std::string& path) {
    return sizeOf(path) == 0U && sizeOf(path + "-wal").value_or(0) > 0;
}

EmptiedBookError::EmptiedBookError(const std::string& path)
    : std::runtime_error("生词本 " + path + " 被清空了（0 字节），但旁边的 " + path
                         + "-wal 里还有数据；为了不丢失它们，没有打开生词本。"
                           "请先把这两个文件复制到别处，再用 tavik-cli restore 从备份恢复") {}

} // namespace tavik
