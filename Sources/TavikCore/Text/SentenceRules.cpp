#include "Text/BreakIterators.h"
#include "Text/CharacterClasses.h"
#include "Text/SentenceTokenizer.h"
#include "Text/TextUtil.h"
#include "Text/Unicode.h"

#include <unicode/utf16.h>

#include <algorithm>

namespace tavik::TextUtil {
namespace {

constexpr std::string_view ellipsis = "…";

bool isLineBreakUnit(char16_t unit) {
    return unit == u'\n' || unit == u'\r';
}

/// Writes a space for every CR or LF that has no other beside it: a wrapped line goes on, a
/// paragraph ends. Each unit stays one unit, so positions keep their meaning.
std::u16string unwrapped(std::u16string_view text) {
    std::u16string result(text);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!isLineBreakUnit(text[i])) continue;
        const bool followsOne = i > 0 && isLineBreakUnit(text[i - 1]);
        const bool precedesOne = i + 1 < text.size() && isLineBreakUnit(text[i + 1]);
        if (!followsOne && !precedesOne) result[i] = u' ';
    }
    return result;
}

bool splitsSurrogatePair(std::u16string_view text, std::size_t at) {
    return at > 0 && at < text.size() && U16_IS_LEAD(text[at - 1]) && U16_IS_TRAIL(text[at]);
}

/// The units of `range`, or nothing when it does not lie in `text` or cuts a character in two.
std::optional<std::u16string_view> units(std::u16string_view text, UTF16Range range) {
    const auto length = static_cast<std::int64_t>(text.size());
    if (range.location < 0 || range.length < 0 || range.location > length
        || range.length > length - range.location)
        return std::nullopt;
    const auto start = static_cast<std::size_t>(range.location);
    const auto count = static_cast<std::size_t>(range.length);
    if (splitsSurrogatePair(text, start) || splitsSurrogatePair(text, start + count))
        return std::nullopt;
    return text.substr(start, count);
}

std::string onOneLine(std::u16string_view sentence) {
    const std::string text = utf8FromUTF16(sentence);
    return joined(split(trimmed(text, isWhiteSpace), isNewline), " ");
}

/// Moves `count` characters from the unit at `from`, stopping at the end of the text.
std::size_t movedBack(icu::BreakIterator& breaks, std::size_t from, std::size_t count) {
    auto at = static_cast<std::int32_t>(from);
    for (; count > 0 && at > 0; --count)
        at = breaks.preceding(at);
    return static_cast<std::size_t>(std::max(at, 0));
}

std::size_t movedForward(icu::BreakIterator& breaks, std::size_t from, std::size_t count,
                         std::size_t length) {
    auto at = static_cast<std::int32_t>(from);
    for (; count > 0 && static_cast<std::size_t>(at) < length; --count)
        at = breaks.following(at);
    return static_cast<std::size_t>(at);
}

/// A sentence of more than `maxLength` characters, cut around the first occurrence of `selected`.
std::string shortened(std::u16string_view sentence, std::u16string_view selected,
                      std::size_t maxLength) {
    const auto breaks = characterBreaks(sentence);
    const std::size_t found =
        selected.empty() ? std::u16string_view::npos : sentence.find(selected);
    if (found == std::u16string_view::npos) {
        const std::size_t end = movedForward(*breaks, 0, maxLength, sentence.size());
        return utf8FromUTF16(sentence.substr(0, end)) + std::string(ellipsis);
    }
    const std::size_t start = movedBack(*breaks, found, maxLength / 2);
    const std::size_t end =
        movedForward(*breaks, found + selected.size(), maxLength / 2, sentence.size());
    const std::string piece = utf8FromUTF16(sentence.substr(start, end - start));
    return std::string(ellipsis).append(trimmed(piece, isBlank)).append(ellipsis);
}

} // namespace

std::optional<std::string> sentence(std::u16string_view text, UTF16Range selection,
                                    std::size_t maxLength) {
    if (text.empty()) return std::nullopt;
    const std::u16string paragraph = unwrapped(text);
    const auto selected = units(paragraph, selection);
    if (!selected) return std::nullopt;

    const auto sentences = sentenceRanges(paragraph);
    const auto found = std::find_if(sentences.begin(), sentences.end(), [&](UTF16Range range) {
        return selection.location >= range.location
               && selection.location < range.location + range.length;
    });
    if (found == sentences.end()) return std::nullopt;

    std::string line = onOneLine(std::u16string_view(paragraph).substr(
        static_cast<std::size_t>(found->location), static_cast<std::size_t>(found->length)));
    const std::u16string lineUnits = utf16FromUTF8(line);
    if (lineUnits.size() > maxLength && characterCount(lineUnits) > maxLength)
        return shortened(lineUnits, *selected, maxLength);
    if (line.empty()) return std::nullopt;
    return line;
}

} // namespace tavik::TextUtil
