#include "Platform/Linux/AtSpi/AtSpiNode.h"

#include "Platform/Linux/AtSpi/TerminalColumns.h"

#include <algorithm>
#include <utility>

namespace tavik {
namespace {

/// What takes no noticeable time to read.
constexpr std::int32_t longestText = 200'000;
/// How far up a page is looked for.
constexpr int mostAncestors = 40;
/// How many elements stand between a page and the one that it is part of.
constexpr int mostFramesAround = 3;

} // namespace

AtSpiNode::AtSpiNode(AtSpiTree& tree, AtSpiReference reference)
    : tree(tree), object(std::move(reference)) {}

std::uint32_t AtSpiNode::role() {
    if (!known.role) known.role = tree.calls().role(object).value_or(atspi::rolePasswordText);
    return *known.role;
}

AtSpiNode* AtSpiNode::parent() {
    if (!known.parent) known.parent = tree.node(tree.calls().parent(object));
    return *known.parent;
}

std::vector<AtSpiNode*> AtSpiNode::children(std::size_t limit) {
    std::vector<AtSpiNode*> found;
    for (const AtSpiReference& reference : tree.calls().children(object, limit))
        if (AtSpiNode* const child = tree.node(reference)) {
            if (!child->known.parent) child->known.parent = this;
            found.push_back(child);
        }
    return found;
}

std::optional<bool> AtSpiNode::hasChild() {
    const AtSpiReference child = tree.calls().child(object, 0);
    if (child.path.empty()) return std::nullopt;
    return !child.isNull();
}

AtSpiStates AtSpiNode::states() {
    if (!known.states) known.states = tree.calls().states(object);
    return *known.states;
}

bool AtSpiNode::isTextField() {
    return role() == atspi::roleEntry || role() == atspi::roleText || isPassword();
}

bool AtSpiNode::isInline() {
    if (!known.isInline) {
        const auto attributes = tree.calls().attributes(object);
        const auto display = attributes.find("display");
        if (display != attributes.end())
            known.isInline = display->second.starts_with("inline");
        else
            known.isInline = role() == atspi::roleLink || role() == atspi::roleStatic
                             || role() == atspi::roleLabel;
    }
    return *known.isInline;
}

AtSpiNode* AtSpiNode::page() {
    if (!known.page) {
        AtSpiNode* at = this;
        for (int i = 0; i < mostAncestors && at && !at->isPage(); ++i)
            at = at->role() == atspi::roleFrame ? nullptr : at->parent();
        known.page = at && at->isPage() ? at : nullptr;
    }
    return *known.page;
}

bool AtSpiNode::isInInnerPage() {
    AtSpiNode* const inner = page();
    AtSpiNode* around = inner ? inner->parent() : nullptr;
    for (int i = 0; i < mostFramesAround && around && !around->isPage(); ++i)
        around = around->parent();
    return around && around->isPage();
}

std::optional<std::int32_t> AtSpiNode::characterCount() {
    if (!known.count) {
        known.count.emplace();
        if (!isPassword()) *known.count = tree.calls().characterCount(object);
        if (*known.count && **known.count < 0) known.count->reset();
    }
    return *known.count;
}

bool AtSpiNode::isVeryLong() {
    return characterCount().value_or(0) > longestText;
}

const NodeText* AtSpiNode::text() {
    if (!known.text) {
        known.text.emplace();
        const auto count = characterCount();
        if (count && !isVeryLong())
            if (const auto delivered = tree.calls().text(object, 0, *count))
                known.text->emplace(*delivered, *count);
    }
    return *known.text ? &**known.text : nullptr;
}

std::optional<AtSpiRange> AtSpiNode::rawSelection() {
    if (!known.rawSelection) {
        known.rawSelection.emplace();
        // What has no text has no selection, and is not asked for one.
        if (characterCount()) *known.rawSelection = tree.calls().selection(object);
        if (*known.rawSelection) {
            const auto [one, other] = **known.rawSelection;
            const AtSpiRange ends(std::max(std::min(one, other), 0),
                                  std::max(std::max(one, other), 0));
            *known.rawSelection = ends;
            if (ends.first == ends.second) known.rawSelection->reset();
        }
    }
    return *known.rawSelection;
}

std::optional<UTF16Range> AtSpiNode::selection() {
    if (!known.selection) known.selection = askedSelection();
    return *known.selection;
}

std::optional<UTF16Range> AtSpiNode::askedSelection() {
    const auto ends = rawSelection();
    const NodeText* const all = text();
    if (!all) return std::nullopt;
    std::optional<UTF16Range> range;
    if (all->hasWideCharacters() && tree.isOfToolkit(object, "Chromium"))
        range = repairedSelection(*all, ends);
    else if (ends && isTerminal() && hasUnevenCharacters(all->units()))
        range = rangeOfColumns(all->units(), *ends, columns());
    else if (ends)
        range = all->range(ends->first, ends->second);
    return range && range->length > 0 ? range : std::nullopt;
}

std::int64_t AtSpiNode::columns() {
    const auto cell = tree.calls().characterExtents(object, 0);
    const auto all = tree.calls().extents(object);
    if (!cell || !all || cell->width < 1) return 0;
    return static_cast<std::int64_t>(all->width / cell->width);
}

std::optional<UTF16Range> AtSpiNode::repairedSelection(const NodeText& all,
                                                       std::optional<AtSpiRange> ends) {
    AtSpiCalls& calls = tree.calls();
    if (!ends && calls.selectionCount(object) != 1) return std::nullopt;
    const std::int32_t caret = calls.caretOffset(object).value_or(-1);
    if (!ends) return all.inconvertible(caret);
    const auto [start, end] = all.repaired(*ends, caret);
    return all.range(start, end);
}

AtSpiNode* AtSpiNode::embeddedAt(std::int64_t unit) {
    const NodeText* const all = text();
    if (!all || unit < 0 || unit >= static_cast<std::int64_t>(all->units().size())
        || all->units()[static_cast<std::size_t>(unit)] != atspi::embeddedObject)
        return nullptr;
    if (const auto found = known.embedded.find(unit); found != known.embedded.end())
        return found->second;
    const auto index = static_cast<std::int32_t>(all->embeddedObjectsBefore(unit));
    return known.embedded[unit] = tree.node(tree.calls().embedded(object, index));
}

AtSpiNode* AtSpiTree::node(const AtSpiReference& reference) {
    if (reference.isNull()) return nullptr;
    auto& kept = nodes[reference];
    if (!kept) kept = std::make_unique<AtSpiNode>(*this, reference);
    return kept.get();
}

void AtSpiTree::forget() {
    for (auto& [reference, node] : nodes)
        node->forget();
}

bool AtSpiTree::isOfToolkit(const AtSpiReference& object, std::string_view name) {
    const auto known = toolkits.find(object.bus);
    if (known != toolkits.end()) return known->second == name;
    const AtSpiReference application{object.bus, "/org/a11y/atspi/accessible/root"};
    return (toolkits[object.bus] = atSpiCalls.toolkitName(application)) == name;
}

} // namespace tavik
