#include "Text/LineWrap.h"

#include "Text/BreakIterators.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

namespace tavik {

std::vector<std::string> wrappedLines(std::string_view text, std::size_t columns) {
    if (text.empty()) return {};
    if (displayWidth(text) <= columns) return {std::string(trimmed(text, isWhiteSpace))};
    const std::u16string units = utf16FromUTF8(text);
    const auto breaks = lineBreaks(units);
    std::vector<std::string> lines;
    std::string line;
    const auto closeLine = [&] {
        lines.emplace_back(trimmed(line, isWhiteSpace));
        line.clear();
    };
    std::size_t start = 0;
    for (auto end = breaks->next(); end != icu::BreakIterator::DONE; end = breaks->next()) {
        const auto at = static_cast<std::size_t>(end);
        const std::string piece =
            utf8FromUTF16(std::u16string_view(units).substr(start, at - start));
        const std::string_view visible = trimmed(piece, isWhiteSpace);
        if (!line.empty() && displayWidth(line) + displayWidth(visible) > columns) closeLine();
        line += piece;
        start = at;
    }
    if (!line.empty()) closeLine();
    return lines;
}

} // namespace tavik
