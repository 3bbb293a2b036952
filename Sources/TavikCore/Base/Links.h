#pragma once

#include <filesystem>

namespace tavik {

/// Where a file at `path` really lies or, when it is missing, would be created: symbolic links in
/// its place are followed even when the last of them leads nowhere yet.
std::filesystem::path followingLinks(const std::filesystem::path& path);

} // namespace tavik
