#include "Text/SentenceTokenizer.h"

#include "Text/Abbreviations.h"
#include "Text/BreakIterators.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace tavik {
namespace {

/// How far back and ahead brackets are matched.
constexpr std::size_t bracketReach = 300;
constexpr std::size_t maxListMarkUnits = 4;

constexpr std::u16string_view closingQuotes = u"\"'”’»";
constexpr std::u16string_view closingMarks = u"\"'”’»)]";
constexpr std::u16string_view openingMarks = u"\"'“‘«([";

bool isOneOf(char16_t unit, std::u16string_view set) {
    return set.find(unit) != std::u16string_view::npos;
}

std::u16string_view withoutTrailingWhiteSpace(std::u16string_view text) {
    while (!text.empty() && isWhiteSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

std::u16string_view withoutOpeningMarks(std::u16string_view text) {
    while (!text.empty() && isOneOf(text.front(), openingMarks))
        text.remove_prefix(1);
    return text;
}

std::u16string_view lastWord(std::u16string_view text) {
    std::size_t start = text.size();
    while (start > 0 && !isWhiteSpace(text[start - 1]))
        --start;
    return withoutOpeningMarks(text.substr(start));
}

/// The letters that the text begins with.
std::u16string_view firstWord(std::u16string_view text) {
    std::size_t end = 0;
    while (end < text.size() && isLetter(text[end]))
        ++end;
    return text.substr(0, end);
}

bool hasLettersOrDigits(std::u16string_view text) {
    for (std::size_t offset = 0; offset < text.size();)
        if (isAlphanumeric(nextScalar(text, offset))) return true;
    return false;
}

bool startsLowerCase(std::u16string_view text) {
    return !text.empty() && u_islower(text.front()) != 0;
}

bool startsWithDigit(std::u16string_view text) {
    return !text.empty() && u_isdigit(text.front()) != 0;
}

bool endsInAbbreviation(std::u16string_view sentence, std::u16string_view next) {
    const std::u16string_view following = withoutOpeningMarks(next);
    switch (abbreviation(lastWord(sentence))) {
    case Abbreviation::continues:
        return true;
    case Abbreviation::beforeNumber:
        return startsWithDigit(following);
    case Abbreviation::unlessOpener:
        return !isSentenceOpener(firstWord(following));
    case Abbreviation::none:
        break;
    }
    return false;
}

/// "1.", "12)", "(3)", "b." or "IV." and nothing else.
bool isListMark(std::u16string_view sentence) {
    const std::u16string_view mark = withoutOpeningMarks(sentence);
    if (mark.size() < 2 || mark.size() > maxListMarkUnits) return false;
    const std::u16string_view label = mark.substr(0, mark.size() - 1);
    const bool isNumber =
        std::all_of(label.begin(), label.end(), [](char16_t unit) { return u_isdigit(unit) != 0; });
    const bool isNumeral = std::all_of(label.begin(), label.end(),
                                       [](char16_t unit) { return isOneOf(unit, u"IVXivx"); });
    const bool isLetterAlone = label.size() == 1 && isLetter(label.front()) && label != u"I";
    return isOneOf(mark.back(), u".)")
           && (isNumber || isLetterAlone || (isNumeral && label != u"I"));
}

/// Whether `next` goes on after the quoted speech that `sentence` ends with.
bool isSpeechThatGoesOn(std::u16string_view sentence, std::u16string_view next) {
    if (sentence.empty() || !isOneOf(sentence.back(), closingMarks)) return false;
    if (startsLowerCase(next)) return true;
    if (!isOneOf(sentence.back(), closingQuotes)) return false;
    const std::u16string_view speaker = firstWord(next);
    if (speaker.empty() || next.size() <= speaker.size() + 1) return false;
    return isSpeechVerb(firstWord(next.substr(speaker.size() + 1)));
}

bool isOpeningBracket(char16_t unit) {
    return unit == u'(' || unit == u'[';
}

bool isClosingBracket(char16_t unit) {
    return unit == u')' || unit == u']';
}

/// Whether a bracket that is not the first character of `sentence` is open at its end and closes
/// soon in what follows.
bool isInsideBrackets(std::u16string_view sentence, std::u16string_view rest) {
    const std::size_t from = sentence.size() > bracketReach ? sentence.size() - bracketReach : 1;
    int depth = 0;
    for (const char16_t unit : sentence.substr(from)) {
        if (isOpeningBracket(unit)) ++depth;
        if (isClosingBracket(unit) && depth > 0) --depth;
    }
    if (depth == 0) return false;
    for (const char16_t unit : rest.substr(0, bracketReach)) {
        if (isNewline(unit) || isOpeningBracket(unit)) return false;
        if (isClosingBracket(unit)) return true;
    }
    return false;
}

/// Whether the break between two pieces is none for a reader. `sentence` comes with the white space
/// behind it, `rest` is all text from `next` on.
bool isJoined(std::u16string_view sentence, std::u16string_view next, std::u16string_view rest) {
    const std::u16string_view visible = withoutTrailingWhiteSpace(sentence);
    const std::u16string_view gap = sentence.substr(visible.size());
    if (visible.empty()
        || std::any_of(gap.begin(), gap.end(), [](char16_t unit) { return isNewline(unit); }))
        return false;
    if (!hasLettersOrDigits(next)) return true;
    if (gap.empty()) return visible.back() < 0x80 && next.front() < 0x80;
    return endsInAbbreviation(visible, next) || isListMark(visible)
           || isSpeechThatGoesOn(visible, next) || isInsideBrackets(visible, rest);
}

} // namespace

std::vector<UTF16Range> sentenceRanges(std::u16string_view text) {
    const auto breaks = sentenceBreaks(text);
    std::vector<UTF16Range> ranges;
    const auto units = [&](std::int64_t start, std::int64_t end) {
        return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
    };
    std::int64_t start = 0;
    for (auto end = breaks->next(); end != icu::BreakIterator::DONE; end = breaks->next()) {
        const bool joins = !ranges.empty()
                           && isJoined(units(ranges.back().location, start), units(start, end),
                                       text.substr(static_cast<std::size_t>(start)));
        if (joins)
            ranges.back().length = end - ranges.back().location;
        else
            ranges.push_back({start, end - start});
        start = end;
    }
    return ranges;
}

} // namespace tavik
