#include "Base/ResourceFile.h"

#include <system_error>

namespace tavik {
namespace fs = std::filesystem;

fs::path resourceFile(std::string_view name) {
    std::error_code ignored;
    const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
    fs::path installed = program.parent_path().parent_path() / "share" / "tavik" / name;
    if (fs::exists(installed, ignored)) return installed;
    fs::path inSourceTree = fs::path(TAVIK_SOURCE_RESOURCES) / name;
    if (fs::exists(inSourceTree, ignored)) return inSourceTree;
    return installed;
}

} // namespace tavik
