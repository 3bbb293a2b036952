#include "TavikTerminal/Report.h"

#include "Text/LineWrap.h"
#include "Text/Unicode.h"

#include <algorithm>

namespace tavik {
namespace {

constexpr std::size_t maxLineColumns = 100;
constexpr std::size_t minLineColumns = 20;

} // namespace

void Report::line(const std::string& styledText) {
    text += styledText + '\n';
}

void Report::paragraph(std::string_view content, std::size_t indent, TextStyle style) {
    const std::size_t columns = std::min(terminal.columns, maxLineColumns);
    const std::size_t room = columns > indent + minLineColumns ? columns - indent : minLineColumns;
    for (const std::string& wrapped : wrappedLines(printable(content), room))
        line(std::string(indent, ' ') + inStyle(style, wrapped));
}

void Report::heading(std::string_view title) {
    line(inStyle(TextStyle::faint, title));
}

void Report::marked(std::string_view before, std::string_view match, std::string_view after,
                    std::size_t indent) {
    const std::string mark = '[' + std::string(match) + ']';
    line(std::string(indent, ' ') + printable(before) + inStyle(TextStyle::accent, mark)
         + printable(after));
}

std::string Report::inStyle(TextStyle style, std::string_view content) const {
    return styled(terminal, style, printable(content));
}

std::string Report::clipped(std::string_view content, std::size_t columns) const {
    std::string whole = printable(content);
    if (!terminal.isInteractive || displayWidth(whole) <= columns) return whole;
    std::string clip;
    for (std::size_t offset = 0; offset < whole.size();) {
        const std::size_t start = offset;
        nextScalar(whole, offset);
        const std::string longer = clip + whole.substr(start, offset - start);
        if (displayWidth(longer) >= columns) break;
        clip = longer;
    }
    return clip + "…";
}

std::string padded(std::string text, std::size_t columns) {
    const std::size_t width = displayWidth(text);
    if (width < columns) text.append(columns - width, ' ');
    return text;
}

} // namespace tavik
