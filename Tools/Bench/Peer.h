#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tavik {

/// Prints how `tavik-cli` compares with sdcv, both answering the same words from the same rows.
///
/// `work` holds the StarDict dictionary of those rows in `work/stardict` and receives scratch
/// files. Without sdcv there is nothing but a note. Both are warmed up, sdcv's own cache included.
void reportPeer(const std::string& dictionary, const std::vector<std::string>& words,
                const std::filesystem::path& work);

} // namespace tavik
