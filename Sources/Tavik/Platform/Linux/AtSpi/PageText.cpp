#include "Platform/Linux/AtSpi/PageText.h"

#include <algorithm>

namespace tavik {
namespace {

constexpr std::size_t deepest = 12;
constexpr int mostNodes = 400;
constexpr std::size_t longestText = 200'000;
/// How many parts are read before and behind the selection: blocks, in which no sentence reaches
/// into the next, and parts of lines.
constexpr std::int64_t blocksAround = 3;
constexpr std::int64_t inlinesAround = 20;
/// How many parts are read of what has no selection.
constexpr std::int64_t mostParts = 60;

constexpr int deepestSelection = 40;
constexpr int mostInlineAncestors = 6;

std::int64_t length(const NodeText& text) {
    return static_cast<std::int64_t>(text.units().size());
}

bool isEmbedded(const NodeText& text, std::int64_t unit) {
    return text.units()[static_cast<std::size_t>(unit)] == atspi::embeddedObject;
}

/// The embedded objects of `node` that are read, by their number.
std::pair<std::int64_t, std::int64_t> partsToRead(AtSpiNode& node, const NodeText& text) {
    const std::int64_t all = text.embeddedObjectsBefore(length(text));
    if (all <= 2 * blocksAround) return {0, all};
    const auto selection = node.selection();
    if (!selection) return {0, std::min(all, mostParts)};
    AtSpiNode* const selected = node.embeddedAt(selection->location);
    const std::int64_t around = selected && !selected->isInline() ? blocksAround : inlinesAround;
    const std::int64_t first = text.embeddedObjectsBefore(selection->location);
    const std::int64_t last = text.embeddedObjectsBefore(selection->location + selection->length);
    return {first - around, last + around};
}

/// The length of the mark of a list item, which is no part of what it says.
std::int64_t markLength(AtSpiNode& node, const NodeText& text) {
    if (node.role() != atspi::roleListItem) return 0;
    const std::int64_t mark = listMarkLength(text.units());
    const auto selection = mark > 0 ? node.selection() : std::nullopt;
    return selection && selection->location < mark ? 0 : mark;
}

/// Leaves out, at either end, embedded objects of which nothing is selected: browsers touch the
/// next paragraph when a whole one is selected.
UTF16Range withoutUntouched(AtSpiNode& node, const NodeText& text, UTF16Range range) {
    const auto isUntouched = [&](std::int64_t unit) {
        AtSpiNode* const part = isEmbedded(text, unit) ? node.embeddedAt(unit) : nullptr;
        return part && !part->selection();
    };
    UTF16Range rest = range;
    while (rest.length > 1 && isUntouched(rest.location + rest.length - 1))
        --rest.length;
    while (rest.length > 1 && isUntouched(rest.location)) {
        ++rest.location;
        --rest.length;
    }
    return rest;
}

/// The part that `range` consists of, if it is a single one with a text of its own.
AtSpiNode* onlyPart(AtSpiNode& node, const NodeText& text, UTF16Range range) {
    if (range.length != 1 || !isEmbedded(text, range.location)) return nullptr;
    AtSpiNode* const part = node.embeddedAt(range.location);
    return part && part->selection() ? part : nullptr;
}

enum class End { start, end };

/// The innermost place of one end of what is selected in `node`.
PageText::Place endOf(AtSpiNode& node, UTF16Range range, End end) {
    PageText::Place place{&node, range.location + (end == End::end ? range.length : 0)};
    for (int depth = 0; depth < deepestSelection; ++depth) {
        const NodeText* const text = place.node->text();
        const std::int64_t unit = place.unit - (end == End::end ? 1 : 0);
        if (!text || unit < 0 || unit >= length(*text) || !isEmbedded(*text, unit)) break;
        AtSpiNode* const part = place.node->embeddedAt(unit);
        const auto selected = part ? part->selection() : std::nullopt;
        if (!selected) break;
        place = {part, selected->location + (end == End::end ? selected->length : 0)};
    }
    return place;
}

} // namespace

/// How far a node has been read.
struct PageText::Reading {
    AtSpiNode* node;
    const NodeText& text;
    /// The numbers of its embedded objects that are read.
    std::pair<std::int64_t, std::int64_t> parts;
    bool isBlock;
    std::int64_t unit;
    std::int64_t part = 0;

    bool isAtEnd() const { return unit >= length(text); }

    bool isPartWanted() const { return part >= parts.first && part < parts.second; }
};

PageText::PageText(AtSpiNode& root) {
    std::vector<Reading> readings;
    begin(readings, root, true);
    while (!readings.empty() && text.size() < longestText) {
        Reading& reading = readings.back();
        addOwn(reading);
        if (reading.isAtEnd()) {
            needsBreak = needsBreak || reading.isBlock;
            readings.pop_back();
            continue;
        }
        AtSpiNode* const part =
            reading.isPartWanted() ? reading.node->embeddedAt(reading.unit) : nullptr;
        // A selection may end at an object that has no text.
        if (reading.isPartWanted())
            pieces.push_back(
                {reading.node, reading.unit, static_cast<std::int64_t>(text.size()), 0});
        ++reading.unit;
        ++reading.part;
        if (part) addEmbedded(readings, *part);
    }
}

void PageText::begin(std::vector<Reading>& readings, AtSpiNode& node, bool isBlock) {
    const NodeText* const own = node.text();
    if (!own || readings.size() > deepest || ++nodeCount > mostNodes) return;
    readings.push_back({&node, *own, partsToRead(node, *own), isBlock, markLength(node, *own)});
}

void PageText::addEmbedded(std::vector<Reading>& readings, AtSpiNode& part) {
    if (part.isInline() && !part.isTextField()) return begin(readings, part, false);
    needsBreak = true;
    // What users type, and pages within the page, are no part of the text around them.
    if (!part.isTextField() && !part.isPage()) begin(readings, part, true);
}

/// Adds what stands before the next embedded object.
void PageText::addOwn(Reading& reading) {
    const std::u16string& units = reading.text.units();
    const auto start = static_cast<std::size_t>(reading.unit);
    const std::size_t end = std::min(units.find(atspi::embeddedObject, start), units.size());
    reading.unit = static_cast<std::int64_t>(end);
    if (end == start) return;
    if (needsBreak && !text.empty()) text += u"\n\n";
    needsBreak = false;
    pieces.push_back({reading.node, static_cast<std::int64_t>(start),
                      static_cast<std::int64_t>(text.size()),
                      static_cast<std::int64_t>(end - start)});
    text += units.substr(start, end - start);
}

std::optional<std::int64_t> PageText::offsetOf(const Place& place) const {
    std::optional<std::int64_t> offset;
    for (const Piece& piece : pieces) {
        if (piece.node != place.node) continue;
        const std::int64_t inside =
            std::clamp<std::int64_t>(place.unit - piece.unit, 0, piece.length);
        // The first piece that reaches there, or else the last one before.
        offset = piece.offset + inside;
        if (place.unit <= piece.unit + piece.length) break;
    }
    return offset;
}

std::vector<PageText::Stretch> PageText::stretches(UTF16Range range, std::size_t limit) const {
    std::vector<Stretch> found;
    for (const Piece& piece : pieces) {
        const std::int64_t start = std::max(range.location, piece.offset);
        const std::int64_t end =
            std::min(range.location + range.length, piece.offset + piece.length);
        if (end > start && found.size() < limit)
            found.push_back({piece.node, {piece.unit + start - piece.offset, end - start}});
    }
    return found;
}

std::optional<PageSelection> selectionIn(AtSpiNode& node) {
    AtSpiNode* common = &node;
    auto range = node.selection();
    for (int depth = 0; range && depth < deepestSelection; ++depth) {
        range = withoutUntouched(*common, *common->text(), *range);
        AtSpiNode* const part = onlyPart(*common, *common->text(), *range);
        if (!part) break;
        common = part;
        range = part->selection();
    }
    if (!range) return std::nullopt;
    return PageSelection{common, endOf(*common, *range, End::start),
                         endOf(*common, *range, End::end)};
}

AtSpiNode& blockAround(AtSpiNode& node) {
    AtSpiNode* block = &node;
    for (int i = 0; i < mostInlineAncestors && !block->isTextField() && block->isInline(); ++i) {
        AtSpiNode* const parent = block->parent();
        if (!parent || parent->isPage()) break;
        block = parent;
    }
    return *block;
}

} // namespace tavik
