#include "Text/CharacterClasses.h"
#include "Text/TextUtil.h"
#include "Text/Unicode.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <array>

namespace tavik::TextUtil {
namespace {

constexpr std::size_t maxCandidateCharacters = 40;
constexpr std::size_t maxCandidateWords = 4;
constexpr std::int64_t maxWordReach = 60;

bool isASCIILetter(char32_t scalar) {
    return (scalar >= 'a' && scalar <= 'z') || (scalar >= 'A' && scalar <= 'Z');
}

bool isTrimmedFromWords(char32_t scalar) {
    return isWhiteSpace(scalar) || isPunctuationOrSymbol(scalar);
}

bool isSpace(char32_t scalar) {
    return scalar == ' ';
}

bool isCandidateScalar(char32_t scalar) {
    return isLetter(scalar) || scalar == ' ' || scalar == '\'' || scalar == '-';
}

bool isApostropheOrHyphen(char16_t unit) {
    return unit == u'\'' || unit == u'\u2019' || unit == u'-';
}

bool isWordUnit(char16_t unit) {
    return isASCIILetter(unit) || isApostropheOrHyphen(unit);
}

bool belongsToLongerToken(char16_t neighbour) {
    return !U16_IS_SURROGATE(neighbour) && isAlphanumeric(neighbour);
}

} // namespace

std::string normalizeWord(std::string_view text) {
    return lowercased(joined(split(trimmed(text, isTrimmedFromWords), isWhiteSpace), " "));
}

std::string normalizePhonetic(std::string_view text) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 4> rules{
        {{"ә", "ə"}, {"'", "ˈ"}, {",", "ˌ"}, {":", "ː"}}};
    std::string result(text);
    for (const auto& [from, to] : rules)
        result = replacingAll(result, from, to);
    return result;
}

bool isLookupCandidate(std::string_view text) {
    const std::string word = normalizeWord(text);
    return !word.empty() && characterCount(word) <= maxCandidateCharacters
           && split(word, isSpace).size() <= maxCandidateWords
           && allScalars(word, isCandidateScalar)
           && std::any_of(word.begin(), word.end(), [](char unit) {
                  return isASCIILetter(static_cast<unsigned char>(unit));
              });
}

std::optional<std::string> straightenedCandidate(std::string_view selection) {
    const std::string_view captured = trimmed(selection, isWhiteSpace);
    if (isLookupCandidate(captured)) return std::nullopt;
    std::string straight = replacingAll(replacingAll(captured, "\u2019", "'"), "\u02BC", "'");
    if (!isLookupCandidate(straight)) return std::nullopt;
    return straight;
}

std::optional<UTF16Range> wordRange(std::u16string_view text, std::int64_t index) {
    const auto length = static_cast<std::int64_t>(text.size());
    const auto unit = [&](std::int64_t at) { return text[static_cast<std::size_t>(at)]; };
    if (index < 0 || index >= length || !isWordUnit(unit(index))) return std::nullopt;

    std::int64_t first = index;
    std::int64_t last = index;
    while (first > 0 && index - first < maxWordReach && isWordUnit(unit(first - 1)))
        --first;
    while (last + 1 < length && last - index < maxWordReach && isWordUnit(unit(last + 1)))
        ++last;
    while (first <= last && isApostropheOrHyphen(unit(first)))
        ++first;
    while (first <= last && isApostropheOrHyphen(unit(last)))
        --last;

    if (last - first + 1 < 2 || index < first || index > last) return std::nullopt;
    if (first > 0 && belongsToLongerToken(unit(first - 1))) return std::nullopt;
    if (last + 1 < length && belongsToLongerToken(unit(last + 1))) return std::nullopt;
    return UTF16Range{first, last - first + 1};
}

} // namespace tavik::TextUtil
