#include "Platform/Linux/AtSpi/NodeText.h"

#include "Platform/Linux/AtSpi/AtSpiConstants.h"

#include <glib.h>

#include <algorithm>
#include <cstddef>

namespace tavik {
namespace {

constexpr char16_t padding = u'\uFEFF';

constexpr char16_t paragraphSeparator = u'\u2029';

/// Where Qt's tables and frames begin and end.
bool isFrameMark(char32_t scalar) {
    return scalar == 0xFDD0 || scalar == 0xFDD1;
}

bool isLead(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool isASCIIDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

bool isASCIILetter(char16_t unit) {
    return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z';
}

} // namespace

NodeText::NodeText(std::string_view delivered, std::int64_t count) {
    std::int64_t codePoints = 0;
    bool isPadded = false;
    bool isBehindWide = false;
    text.reserve(delivered.size());
    for (std::size_t at = 0; at < delivered.size(); ++codePoints) {
        const char32_t scalar = g_utf8_get_char(&delivered[at]);
        at += static_cast<std::size_t>(g_unichar_to_utf8(scalar, nullptr));
        if (isBehindWide && scalar == padding) {
            isPadded = true;
            isBehindWide = false;
            continue;
        }
        isBehindWide = scalar > 0xFFFF;
        if (isBehindWide) {
            wides.push_back(static_cast<std::int64_t>(text.size()));
            text += static_cast<char16_t>(0xD7C0 + (scalar >> 10));
            text += static_cast<char16_t>(0xDC00 + (scalar & 0x3FF));
        } else {
            text += isFrameMark(scalar) ? paragraphSeparator : static_cast<char16_t>(scalar);
        }
    }
    const bool countsUnits = isPadded || (count == size() && count != codePoints);
    if (countsUnits) wides.clear();
}

std::int64_t NodeText::toUnits(std::int64_t offset) const {
    std::int64_t unit = std::max<std::int64_t>(offset, 0);
    for (const std::int64_t wide : wides) {
        if (wide >= unit) break;
        ++unit;
    }
    return wholeCharacters(std::min(unit, size()));
}

std::int64_t NodeText::toOffset(std::int64_t unit) const {
    const std::int64_t inside = wholeCharacters(std::clamp<std::int64_t>(unit, 0, size()));
    return inside - (std::ranges::lower_bound(wides, inside) - wides.begin());
}

UTF16Range NodeText::range(std::int64_t start, std::int64_t end) const {
    const std::int64_t first = toUnits(std::min(start, end));
    return {first, toUnits(std::max(start, end)) - first};
}

std::pair<std::int64_t, std::int64_t>
NodeText::repaired(std::pair<std::int64_t, std::int64_t> reported, std::int64_t caret) const {
    const auto isEnd = [caret](const std::pair<std::int64_t, std::int64_t>& ends) {
        return caret == ends.first || caret == ends.second;
    };
    const std::pair repaired(toUnits(reported.first), toUnits(reported.second));
    return isEnd(reported) && !isEnd(repaired) ? reported : repaired;
}

std::optional<UTF16Range> NodeText::inconvertible(std::int64_t caret) const {
    const std::int64_t at = toUnits(caret);
    std::optional<UTF16Range> upToCaret;
    for (const std::int64_t wide : wides) {
        // The code point whose number is that of the second half.
        const std::int64_t end = toUnits(wide + 1);
        if (end < at && isWordAt(end) && !isWordAt(end - 1)) upToCaret = {end, at - end};
        if (upToCaret || end <= at) continue;
        if (isWordAt(end - 1) && !isWordAt(end)) return UTF16Range{at, end - at};
    }
    return upToCaret;
}

bool NodeText::isWordAt(std::int64_t unit) const {
    if (unit < 0 || unit >= size()) return false;
    const char16_t at = text[static_cast<std::size_t>(unit)];
    const bool isAccentedLetter = at >= 0xC0 && at < 0x250;
    return isASCIILetter(at) || isASCIIDigit(at) || isAccentedLetter;
}

std::int64_t NodeText::embeddedObjectsBefore(std::int64_t unit) const {
    const std::int64_t end = std::clamp<std::int64_t>(unit, 0, size());
    return std::count(text.begin(), text.begin() + end, atspi::embeddedObject);
}

std::int64_t NodeText::wholeCharacters(std::int64_t unit) const {
    const auto at = static_cast<std::size_t>(unit);
    return at > 0 && at < text.size() && isLead(text[at - 1]) ? unit - 1 : unit;
}

bool looksUnmeasured(std::u16string_view selected, double width, double height) {
    if (width <= 0 || height <= 0) return true;
    constexpr double narrowestLetter = 0.12;
    // More may be several lines.
    constexpr std::size_t longestOfOneLine = 40;
    const bool isOneLine =
        selected.size() <= longestOfOneLine && selected.find(u'\n') == std::u16string_view::npos;
    return isOneLine && width < static_cast<double>(selected.size()) * height * narrowestLetter;
}

std::int64_t listMarkLength(std::u16string_view text) {
    constexpr std::u16string_view bullets = u"•◦▪‣⁃○●■□";
    constexpr std::size_t longestNumber = 4;
    std::size_t at = 0;
    if (!text.empty() && bullets.find(text[0]) != std::u16string_view::npos) {
        at = 1;
    } else {
        while (at < text.size() && at < longestNumber && isASCIIDigit(text[at]))
            ++at;
        if (at == 0 || at >= text.size() || (text[at] != u'.' && text[at] != u')')) return 0;
        ++at;
    }
    if (at >= text.size() || (text[at] != u' ' && text[at] != u'\u00A0')) return 0;
    return static_cast<std::int64_t>(at + 1);
}

} // namespace tavik
