#include "Capture/SelectedText.h"

#include "Text/CharacterClasses.h"
#include "Text/TextUtil.h"
#include "Text/Unicode.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace tavik {
namespace {

/// What stands in a text for a picture or another object.
constexpr char16_t embeddedObject = u'\uFFFC';

// Of white space, none takes two units.
bool isVisible(char16_t unit) {
    return !isWhiteSpace(unit);
}

bool isReadable(char16_t unit) {
    return isVisible(unit) && unit != embeddedObject;
}

bool isLetterAt(std::u16string_view text, std::size_t at) {
    return at < text.size() && isAlphanumeric(text[at]);
}

/// Whether no word goes on beyond the ends of this part of the text.
bool isWhole(std::u16string_view text, std::size_t place, std::size_t length) {
    const std::size_t end = place + length;
    const bool goesOnBefore = place > 0 && isLetterAt(text, place - 1) && isLetterAt(text, place);
    return !goesOnBefore && !(isLetterAt(text, end - 1) && isLetterAt(text, end));
}

/// How much of the beginning of `key` stands at the end of what has been read, when that much of it
/// stood there before `unit` was read.
std::size_t extended(std::size_t matched, char16_t unit, std::u16string_view key,
                     const std::vector<std::size_t>& borders) {
    while (matched > 0 && key[matched] != unit)
        matched = borders[matched - 1];
    return key[matched] == unit ? matched + 1 : 0;
}

/// For each beginning of `key`, how much of it stands at its end once more.
std::vector<std::size_t> bordersOf(std::u16string_view key) {
    std::vector<std::size_t> borders(key.size());
    for (std::size_t at = 1; at < key.size(); ++at)
        borders[at] = extended(borders[at - 1], key[at], key, borders);
    return borders;
}

} // namespace

std::u16string_view trimmed(std::u16string_view text) {
    const auto* const first = std::ranges::find_if(text, isVisible);
    const auto last = std::find_if(text.rbegin(), std::make_reverse_iterator(first), isVisible);
    return {first, last.base()};
}

bool isSelection(const std::optional<std::u16string>& text) {
    return text && std::ranges::any_of(*text, isReadable);
}

std::optional<std::size_t> firstOccurrence(std::u16string_view text, std::u16string_view key) {
    // The algorithm of Knuth, Morris and Pratt: the searchers of the standard library take minutes
    // for keys that are made for it.
    if (key.empty()) return 0;
    const auto borders = bordersOf(key);
    std::optional<std::size_t> first;
    std::size_t matched = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (matched == key.size()) matched = borders[matched - 1];
        matched = extended(matched, text[at], key, borders);
        if (matched < key.size()) continue;
        const std::size_t place = at + 1 - matched;
        if (isWhole(text, place, key.size())) return place;
        if (!first) first = place;
    }
    return first;
}

std::optional<std::string> sentenceAt(std::u16string_view text, std::size_t place,
                                      std::u16string_view key) {
    const UTF16Range range{static_cast<std::int64_t>(place), static_cast<std::int64_t>(key.size())};
    return TextUtil::sentence(text, range, maxSentenceLength);
}

bool isClearlyLonger(std::u16string_view text, std::u16string_view key) {
    constexpr std::size_t punctuation = 3;
    return characterCount(text) > characterCount(key) + punctuation;
}

} // namespace tavik
