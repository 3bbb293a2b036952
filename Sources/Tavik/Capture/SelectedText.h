#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// The sentences of captures are cut to about this many characters.
inline constexpr std::size_t maxSentenceLength = 400;

/// `text` without the white space and line breaks at its ends: what is searched for in other texts.
std::u16string_view trimmed(std::u16string_view text);

/// Whether there is anything in it but white space and objects without a text.
bool isSelection(const std::optional<std::u16string>& text);

/// Where `key` stands in `text` for the first time, letter for letter: as words of its own if it
/// does so anywhere. In time proportional to both, as either may be megabytes.
std::optional<std::size_t> firstOccurrence(std::u16string_view text, std::u16string_view key);

/// The sentence in which the `key` at the unit `place` of `text` begins.
std::optional<std::string> sentenceAt(std::u16string_view text, std::size_t place,
                                      std::u16string_view key);

/// Whether `text` is more than the key itself with its punctuation.
bool isClearlyLonger(std::u16string_view text, std::u16string_view key);

} // namespace tavik
