#pragma once

#include "TavikDict/ECDICT.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tavik {

/// The words that the benchmark looks up.
struct WordLists {
    /// The most frequent headwords, the most frequent first.
    std::vector<std::string> frequent;
    /// Inflected forms of frequent headwords.
    std::vector<std::string> inflected;
    /// Words that are no headwords, though they begin like one.
    std::vector<std::string> absent;
};

WordLists makeWordLists(const std::vector<Headword>& headwords);

/// Both throw a runtime error when the file cannot be written or has no line to read.
void writeLines(const std::filesystem::path& file, const std::vector<std::string>& lines);
std::vector<std::string> readLines(const std::filesystem::path& file);

/// At most `count` of the words, spread evenly over all.
std::vector<std::string> spreadSample(const std::vector<std::string>& words, std::size_t count);

} // namespace tavik
