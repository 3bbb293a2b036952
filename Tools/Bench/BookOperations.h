#pragma once

#include <cstddef>
#include <filesystem>

namespace tavik {

/// Prints what the operations of the vocabulary store cost with a book of so many words, and how
/// its list of all words compares with a bare loop over the same statements. The book is written
/// into `directory` and removed again.
///
/// Throws a runtime error when the store answers wrongly.
void reportBookOperations(const std::filesystem::path& directory, std::size_t words);

} // namespace tavik
