#pragma once

#include "Platform/Linux/AtSpi/AtSpiNode.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tavik {

/// The text of an element of a page with all that is embedded in it. Blocks are parted by an empty
/// line. Of an element with very many parts, only those near the selection are read.
class PageText {
public:
    /// A unit of a node's own text.
    struct Place {
        AtSpiNode* node = nullptr;
        std::int64_t unit = 0;
    };

    /// A stretch of a node's own text.
    struct Stretch {
        AtSpiNode* node = nullptr;
        UTF16Range range;
    };

    explicit PageText(AtSpiNode& root);

    const std::u16string& units() const { return text; }

    /// Where the place stands in the text; nothing when it is none of it.
    std::optional<std::int64_t> offsetOf(const Place& place) const;

    /// The stretches of nodes of which the range is made, at most `limit`.
    std::vector<Stretch> stretches(UTF16Range range, std::size_t limit) const;

private:
    /// Where a stretch of a node stands.
    struct Piece {
        AtSpiNode* node;
        std::int64_t unit;
        std::int64_t offset;
        std::int64_t length;
    };

    struct Reading;

    void begin(std::vector<Reading>& readings, AtSpiNode& node, bool isBlock);
    void addEmbedded(std::vector<Reading>& readings, AtSpiNode& part);
    void addOwn(Reading& reading);

    std::u16string text;
    std::vector<Piece> pieces;
    int nodeCount = 0;
    bool needsBreak = false;
};

/// What is selected in a page.
struct PageSelection {
    /// The innermost node that has all of it.
    AtSpiNode* common = nullptr;
    PageText::Place start;
    PageText::Place end;
};

/// What is selected in `node`, if it is not empty.
std::optional<PageSelection> selectionIn(AtSpiNode& node);

/// The innermost block around `node`: itself, unless it stands within a line.
AtSpiNode& blockAround(AtSpiNode& node);

} // namespace tavik
