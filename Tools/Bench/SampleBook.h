#pragma once

#include "Base/Date.h"

#include <cstddef>
#include <string>

/// A vocabulary book made up for measuring. Every word has three encounters, in sentences of 60 to
/// 120 characters, and a card in review. A book of the same number of words is always the same.
namespace tavik::SampleBook {

inline constexpr std::size_t encountersPerWord = 3;

/// Part of one word, and of nothing else that a search looks at.
inline constexpr const char* rareText = "ubiq";

/// The most words that a book can have.
inline constexpr std::size_t maxWords = 110592;

/// Fills the new book at `path`. Throws `SQLiteDB::Error`.
void write(const std::string& path, std::size_t words);

/// When exactly so many of the cards are due.
Date momentOfDue(std::size_t cards);

} // namespace tavik::SampleBook
