#include "Platform/Linux/AtSpi/TerminalColumns.h"

#include <algorithm>
#include <vector>

namespace tavik {
namespace {

bool isLead(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

char32_t scalarAt(std::u16string_view text, std::size_t at) {
    const char16_t unit = text[at];
    if (!isLead(unit) || at + 1 >= text.size()) return unit;
    return 0x10000 + ((char32_t{unit} & 0x3FF) << 10) + (char32_t{text[at + 1]} & 0x3FF);
}

std::int64_t columnsOf(char32_t scalar) {
    if (!g_unichar_validate(scalar)) return 1;
    if (g_unichar_iszerowidth(scalar)) return 0;
    return g_unichar_iswide(scalar) ? 2 : 1;
}

bool isWordAt(std::u16string_view text, std::int64_t unit) {
    if (unit < 0 || unit >= static_cast<std::int64_t>(text.size())) return false;
    return g_unichar_isalnum(scalarAt(text, static_cast<std::size_t>(unit)));
}

bool isWordEnd(std::u16string_view text, std::int64_t unit) {
    return isWordAt(text, unit) != isWordAt(text, unit - 1);
}

/// The units at which a position may be, at most one of each row, in their order.
std::vector<std::int64_t> unitsFor(std::u16string_view text, std::int32_t position,
                                   std::int64_t columns) {
    std::vector<std::int64_t> units;
    std::int64_t rowStart = 0;
    std::int64_t lastRow = -1;
    std::int64_t column = 0;
    std::int64_t codePoint = 0;
    for (std::size_t at = 0; at < text.size(); ++codePoint) {
        const char32_t scalar = scalarAt(text, at);
        const std::int64_t width = columnsOf(scalar);
        if (columns > 0 && column + width > columns) {
            rowStart = codePoint;
            column = 0;
        }
        if (rowStart + column == position && lastRow != rowStart) {
            units.push_back(static_cast<std::int64_t>(at));
            lastRow = rowStart;
        }
        column += width;
        if (scalar == U'\n') {
            rowStart = codePoint + 1;
            column = 0;
        }
        at += scalar > 0xFFFF ? 2 : 1;
    }
    if (rowStart + column == position && lastRow != rowStart)
        units.push_back(static_cast<std::int64_t>(text.size()));
    return units;
}

} // namespace

bool hasUnevenCharacters(std::u16string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at)
        if (text[at] > 0x7F && columnsOf(scalarAt(text, at)) != 1) return true;
    return false;
}

std::optional<UTF16Range> rangeOfColumns(std::u16string_view text, AtSpiRange ends,
                                         std::int64_t columns) {
    std::optional<UTF16Range> best;
    int bestScore = -1;
    const auto lastUnits = unitsFor(text, ends.second, columns);
    for (const std::int64_t start : unitsFor(text, ends.first, columns)) {
        for (const std::int64_t end : lastUnits) {
            const int score = int(isWordEnd(text, start)) + int(isWordEnd(text, end));
            if (end <= start || score < bestScore) continue;
            // Of equal ones the shortest of the last row.
            if (score == bestScore && best && best->location == start) continue;
            best = {start, end - start};
            bestScore = score;
        }
    }
    return best;
}

} // namespace tavik
