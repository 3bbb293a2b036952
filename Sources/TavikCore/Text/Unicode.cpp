#include "Text/Unicode.h"

#include "Text/BreakIterators.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>

namespace tavik {
namespace {

constexpr char32_t replacementCharacter = 0xFFFD;

icu::UnicodeString unicodeString(std::string_view text) {
    return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

std::string utf8(const icu::UnicodeString& text) {
    std::string result;
    text.toUTF8String(result);
    return result;
}

std::size_t columnsOf(UChar32 scalar) {
    const auto category = U_GET_GC_MASK(scalar);
    if ((category & (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK)) != 0) return 0;
    const auto width =
        static_cast<UEastAsianWidth>(u_getIntPropertyValue(scalar, UCHAR_EAST_ASIAN_WIDTH));
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

} // namespace

std::u16string utf16FromUTF8(std::string_view text) {
    const icu::UnicodeString converted = unicodeString(text);
    return {converted.getBuffer(), static_cast<std::size_t>(converted.length())};
}

std::string utf8FromUTF16(std::u16string_view text) {
    return utf8(icu::UnicodeString(false, text.data(), static_cast<std::int32_t>(text.size())));
}

bool isValidUTF8(std::string_view text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    for (std::size_t offset = 0; offset < text.size();) {
        UChar32 scalar = 0;
        U8_NEXT(bytes, offset, text.size(), scalar);
        if (scalar < 0) return false;
    }
    return true;
}

std::string lowercased(std::string_view text) {
    return utf8(unicodeString(text).toLower(icu::Locale::getRoot()));
}

std::size_t characterCount(std::u16string_view text) {
    auto breaks = characterBreaks(text);
    std::size_t count = 0;
    while (breaks->next() != icu::BreakIterator::DONE)
        ++count;
    return count;
}

std::size_t characterCount(std::string_view text) {
    return characterCount(utf16FromUTF8(text));
}

std::string firstCharacters(std::string_view text, std::size_t count) {
    // No honest text has characters of more bytes on average, and the rest may be megabytes.
    constexpr std::size_t maxBytesPerCharacter = 64;
    const std::u16string units = utf16FromUTF8(text.substr(0, count * maxBytesPerCharacter));
    const auto breaks = characterBreaks(units);
    for (std::size_t i = 0; i < count; ++i)
        if (breaks->next() == icu::BreakIterator::DONE) return utf8FromUTF16(units);
    return utf8FromUTF16(
        std::u16string_view(units).substr(0, static_cast<std::size_t>(breaks->current())));
}

std::size_t displayWidth(std::string_view text) {
    std::size_t columns = 0;
    for (std::size_t offset = 0; offset < text.size();)
        columns += columnsOf(static_cast<UChar32>(nextScalar(text, offset)));
    return columns;
}

std::string printable(std::string_view text) {
    std::string result;
    for (std::size_t offset = 0; offset < text.size();) {
        const std::size_t start = offset;
        const char32_t scalar = nextScalar(text, offset);
        const bool isControl =
            scalar != '\t' && u_charType(static_cast<UChar32>(scalar)) == U_CONTROL_CHAR;
        result += isControl ? std::string_view("\uFFFD") : text.substr(start, offset - start);
    }
    return result;
}

char32_t nextMultibyteScalar(std::string_view text, std::size_t& offset) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    UChar32 scalar = 0;
    U8_NEXT_OR_FFFD(bytes, offset, text.size(), scalar);
    return static_cast<char32_t>(scalar);
}

char32_t previousScalar(std::string_view text, std::size_t& offset) {
    constexpr std::size_t longestScalar = 4;
    std::size_t start = offset - 1;
    while (start > 0 && offset - start < longestScalar
           && U8_IS_TRAIL(static_cast<std::uint8_t>(text[start])))
        --start;
    std::size_t end = start;
    const char32_t scalar = nextScalar(text, end);
    const bool isWellFormed = end == offset;
    offset = isWellFormed ? start : offset - 1;
    return isWellFormed ? scalar : replacementCharacter;
}

char32_t nextScalar(std::u16string_view text, std::size_t& offset) {
    const char16_t unit = text[offset++];
    if (!U16_IS_SURROGATE(unit)) return unit;
    const bool isPair = U16_IS_LEAD(unit) && offset < text.size() && U16_IS_TRAIL(text[offset]);
    if (!isPair) return replacementCharacter;
    return static_cast<char32_t>(U16_GET_SUPPLEMENTARY(unit, text[offset++]));
}

std::string_view trimmed(std::string_view text, ScalarClass isTrimmed) {
    std::size_t start = 0;
    for (std::size_t next = 0; next < text.size(); start = next)
        if (!isTrimmed(nextScalar(text, next))) break;
    std::size_t end = text.size();
    for (std::size_t before = end; before > start; end = before)
        if (!isTrimmed(previousScalar(text, before))) break;
    return text.substr(start, end - start);
}

std::string joined(const std::vector<std::string_view>& pieces, std::string_view separator) {
    std::string result;
    for (const std::string_view piece : pieces) {
        if (!result.empty()) result += separator;
        result += piece;
    }
    return result;
}

std::string replacingAll(std::string_view text, std::string_view from, std::string_view to) {
    std::string result;
    std::size_t start = 0;
    for (std::size_t at = text.find(from); at != std::string_view::npos;
         at = text.find(from, start)) {
        result += text.substr(start, at - start);
        result += to;
        start = at + from.size();
    }
    return result += text.substr(start);
}

} // namespace tavik
