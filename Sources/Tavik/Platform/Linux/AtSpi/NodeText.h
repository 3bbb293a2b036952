#pragma once

#include "Base/UTF16Range.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavik {

/// The text of one object, and how its application counts positions in it: in code points, in
/// UTF-16 units, or in UTF-16 units to which text is padded (a U+FEFF behind each character beyond
/// U+FFFF, which is no part of the text).
class NodeText {
public:
    NodeText() = default;

    /// `delivered` is valid UTF-8, `count` the length of all the text by the application's own
    /// count.
    NodeText(std::string_view delivered, std::int64_t count);

    /// The text in UTF-16, without padding; marks that stand between paragraphs are paragraph
    /// separators.
    const std::u16string& units() const { return text; }

    /// Whether the two ways of counting differ.
    bool hasWideCharacters() const { return !wides.empty(); }

    /// Positions there and in the application's counting; either is moved into the text.
    std::int64_t toUnits(std::int64_t offset) const;
    std::int64_t toOffset(std::int64_t unit) const;

    /// The range between two offsets, whichever is first.
    UTF16Range range(std::int64_t start, std::int64_t end) const;

    /// Undoes what some applications do to the ends of a selection, who take code points for
    /// UTF-16 units and convert them once more. `caret` stands at one of the ends, if it is known.
    std::pair<std::int64_t, std::int64_t> repaired(std::pair<std::int64_t, std::int64_t> reported,
                                                   std::int64_t caret) const;

    /// The selection, up to the caret or from there, of which those applications tell nothing, for
    /// an end of it would be the middle of a character. Of several possible ones the nearest whose
    /// other end is that of a word; nothing when there is none.
    std::optional<UTF16Range> inconvertible(std::int64_t caret) const;

    /// How many embedded objects stand before the unit.
    std::int64_t embeddedObjectsBefore(std::int64_t unit) const;

private:
    std::int64_t size() const { return static_cast<std::int64_t>(text.size()); }

    std::int64_t wholeCharacters(std::int64_t unit) const;
    bool isWordAt(std::int64_t unit) const;

    std::u16string text;
    /// The units at which characters stand that count as one with the application and as two here.
    std::vector<std::int64_t> wides;
};

/// Whether the selected text is so much wider than what is said of its place that the application
/// has not measured it yet.
bool looksUnmeasured(std::u16string_view selected, double width, double height);

/// The length of the mark before a list item, as "• " and "1. ", at the start of its text.
std::int64_t listMarkLength(std::u16string_view text);

} // namespace tavik
