#include "Dictionary/TypedPrefix.h"

#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

#include <array>

namespace tavik {
namespace {

/// An input method for Chinese writes an apostrophe as either quotation mark.
constexpr std::array<const char*, 3> curlyApostrophes{"\u2018", "\u2019", "\u02BC"};
constexpr const char* lastScalar = "\U0010FFFF";

bool isLatinLetter(char32_t scalar) {
    constexpr char32_t endOfLatin = 0x250;
    return scalar < endOfLatin && isLetter(scalar);
}

bool hasLatinLetter(std::string_view text) {
    return !allScalars(text, [](char32_t scalar) { return !isLatinLetter(scalar); });
}

bool endsInWhiteSpace(std::string_view text) {
    std::size_t end = text.size();
    return end > 0 && isWhiteSpace(previousScalar(text, end));
}

} // namespace

std::optional<TypedPrefix> typedPrefix(std::string_view text) {
    if (!hasLatinLetter(text)) return std::nullopt;
    TypedPrefix prefix;
    prefix.word = joined(split(text, isWhiteSpace), " ");
    for (const char* const apostrophe : curlyApostrophes)
        prefix.word = replacingAll(prefix.word, apostrophe, "'");
    prefix.lower = lowercased(prefix.word);
    if (endsInWhiteSpace(text)) prefix.lower += ' ';
    prefix.upper = prefix.lower + lastScalar;
    return prefix;
}

} // namespace tavik
