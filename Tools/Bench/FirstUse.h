#pragma once

#include <string>
#include <vector>

namespace tavik {

/// Opens the dictionary in this process, looks `word` up for the first time, and prints the
/// microseconds of each step on one line.
void runFirstUse(const std::string& dictionary, const std::string& word);

/// Prints what the first lookup costs in fresh processes, the file in the page cache and "cold".
/// `directory` is for scratch files.
void reportFirstUse(const std::string& dictionary, const std::vector<std::string>& words,
                    const std::string& directory);

} // namespace tavik
