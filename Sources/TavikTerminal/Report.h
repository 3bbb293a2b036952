#pragma once

#include "TavikTerminal/Terminal.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace tavik {

/// A report for a person, built line by line, wrapped and indented for the terminal, which must
/// outlive it.
class Report {
public:
    explicit Report(const Terminal& terminal) : terminal(terminal) {}

    /// One line as it is; `styledText` holds no text from outside that is not printable.
    void line(const std::string& styledText);

    void paragraph(std::string_view content, std::size_t indent,
                   TextStyle style = TextStyle::plain);

    void heading(std::string_view title);

    /// A sentence with a word marked in it.
    void marked(std::string_view before, std::string_view match, std::string_view after,
                std::size_t indent);

    /// `content`, made printable, in a style.
    std::string inStyle(TextStyle style, std::string_view content) const;

    /// As much of `content` as fits into so many columns of a terminal; all of it in a file.
    std::string clipped(std::string_view content, std::size_t columns) const;

    std::string finished() { return std::move(text); }

private:
    const Terminal& terminal;
    std::string text;
};

/// `text` followed by blanks up to `columns` terminal columns.
std::string padded(std::string text, std::size_t columns);

} // namespace tavik
