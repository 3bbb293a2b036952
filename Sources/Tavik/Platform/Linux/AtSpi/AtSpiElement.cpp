#include "Platform/Linux/AtSpi/AtSpiElement.h"

#include "Platform/Linux/AtSpi/AtSpiSession.h"

#include <algorithm>
#include <limits>

namespace tavik {
namespace {

/// How much of a very long text is read at once.
constexpr std::int64_t longestStretch = 200'000;
/// How far around the selection in it.
constexpr std::int64_t farthestAround = 2000;
/// Of how many stretches the place of a selection is put together.
constexpr std::size_t mostStretches = 20;

std::int64_t length(const std::u16string& text) {
    return static_cast<std::int64_t>(text.size());
}

std::u16string substring(const std::u16string& text, UTF16Range range) {
    const std::int64_t start = std::clamp<std::int64_t>(range.location, 0, length(text));
    const std::int64_t count = std::clamp<std::int64_t>(range.length, 0, length(text) - start);
    return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(count));
}

/// Some applications take the place of an embedded object for that of the character before it.
UTF16Range withoutBlanksBeforePart(const std::u16string& text, UTF16Range range) {
    const std::int64_t end = range.location + range.length;
    if (end >= length(text) || text[static_cast<std::size_t>(end)] != atspi::embeddedObject)
        return range;
    while (range.length > 1
           && text[static_cast<std::size_t>(range.location + range.length - 1)] == u' ')
        --range.length;
    return range;
}

bool isTrail(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

/// The last `count` units of `text`, with blanks in place of what is missing.
std::u16string lastUnits(const std::u16string& text, std::int64_t count) {
    const std::int64_t missing = std::max<std::int64_t>(count - length(text), 0);
    std::u16string last(static_cast<std::size_t>(missing), u' ');
    last += substring(text, {length(text) - (count - missing), count});
    if (!last.empty() && isTrail(last[0])) last[0] = u' ';
    return last;
}

std::int64_t endOfLongSelection(AtSpiRange ends) {
    return std::min<std::int64_t>(ends.second, std::int64_t{ends.first} + longestStretch);
}

std::int32_t narrowed(std::int64_t offset) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(offset, 0, std::numeric_limits<std::int32_t>::max()));
}

ScreenRect united(const ScreenRect& one, const ScreenRect& other) {
    const double x = std::min(one.x, other.x);
    const double y = std::min(one.y, other.y);
    return {x, y, std::max(one.x + one.width, other.x + other.width) - x,
            std::max(one.y + one.height, other.y + other.height) - y};
}

} // namespace

void AtSpiElement::setMessagingTimeout(std::chrono::milliseconds limit) {
    session.calls().setTimeout(limit);
}

std::optional<bool> AtSpiElement::setManualAccessibility() {
    // The switch of the session is on, or nobody would read; some heed it only under conditions.
    AtSpiNode* const window = session.activeWindowBelow(node);
    return window ? window->hasChild() : std::nullopt;
}

ElementRef AtSpiElement::focusedUIElement() {
    return session.element(session.focusBelow(node));
}

ElementRef AtSpiElement::focusedWindow() {
    return session.element(session.activeWindowBelow(node));
}

std::optional<AccessibleRole> AtSpiElement::role() {
    switch (node.role()) {
    case atspi::roleApplication:
        return AccessibleRole::application;
    case atspi::roleFrame:
    case atspi::roleWindow:
        return AccessibleRole::window;
    case atspi::roleDialog: {
        // Pages have dialogs of their own.
        AtSpiNode* const parent = node.parent();
        return parent && parent->role() == atspi::roleApplication ? AccessibleRole::window
                                                                  : AccessibleRole::other;
    }
    case atspi::roleMenu:
    case atspi::roleMenuBar:
    case atspi::rolePopupMenu:
        return AccessibleRole::menu;
    case atspi::roleDocumentWeb:
        return AccessibleRole::webArea;
    case atspi::roleTerminal:
        return AccessibleRole::terminal;
    case atspi::rolePasswordText:
        return AccessibleRole::passwordField;
    default:
        return AccessibleRole::other;
    }
}

ElementRef AtSpiElement::parent() {
    return session.element(node.parent());
}

std::vector<ElementRef> AtSpiElement::children(std::size_t limit) {
    std::vector<ElementRef> elements;
    for (AtSpiNode* const child : node.children(limit))
        elements.push_back(session.element(child));
    return elements;
}

std::optional<std::string> AtSpiElement::url() {
    const std::uint32_t role = node.role();
    const bool isDocument =
        role == atspi::roleDocumentFrame
        || (role >= atspi::roleDocumentSpreadsheet && role <= atspi::roleDocumentEmail);
    if (!isDocument) return std::nullopt;
    for (const char* const attribute : {"DocURL", "URI"}) {
        std::string address = session.calls().documentAttribute(node.reference(), attribute);
        if (!address.empty()) return address;
    }
    return std::nullopt;
}

std::optional<std::string> AtSpiElement::document() {
    std::string address = session.calls().documentAttribute(node.reference(), "DocURL");
    if (address.empty()) return std::nullopt;
    return address;
}

bool AtSpiElement::hasPlainSelection() {
    if (!node.page()) return true;
    // Fields of a page keep what was selected in them before the focus went elsewhere. What is
    // composed of elements is for the markers.
    const NodeText* const text = node.text();
    return node.isTextField()
           && (session.isFocus(node) || node.states().contains(atspi::stateFocused))
           && !(text && text->embeddedObjectsBefore(length(text->units())) > 0);
}

std::optional<std::u16string> AtSpiElement::textBetween(std::int64_t start, std::int64_t end) {
    const auto delivered =
        session.calls().text(node.reference(), narrowed(start), narrowed(std::max(start, end)));
    if (!delivered) return std::nullopt;
    return NodeText(*delivered, -1).units();
}

std::optional<std::u16string> AtSpiElement::value() {
    const NodeText* const text = node.text();
    if (!text) return std::nullopt;
    return text->units();
}

std::optional<std::int64_t> AtSpiElement::numberOfCharacters() {
    if (const NodeText* const text = node.text()) return length(text->units());
    return node.characterCount();
}

std::optional<std::u16string> AtSpiElement::selectedText() {
    if (!hasPlainSelection() || !node.rawSelection()) return std::nullopt;
    // The text of another tab is not what the user has selected.
    if (!session.isFocus(node) && !node.states().contains(atspi::stateShowing)) return std::nullopt;
    if (const NodeText* const text = node.text()) {
        const auto range = node.selection();
        return range ? std::optional(substring(text->units(), *range)) : std::nullopt;
    }
    const auto ends = node.rawSelection();
    if (!ends) return std::nullopt;
    return textBetween(ends->first, endOfLongSelection(*ends));
}

std::optional<UTF16Range> AtSpiElement::selectedTextRange() {
    if (!hasPlainSelection()) return std::nullopt;
    if (node.text()) return node.selection();
    // Of a very long text only the neighbourhood of the selection is ever asked for, so that its
    // start may keep the application's own number.
    const auto ends = node.rawSelection();
    if (!ends) return std::nullopt;
    return UTF16Range{ends->first, length(selectedText().value_or(std::u16string()))};
}

std::optional<std::u16string> AtSpiElement::stringForRange(UTF16Range range) {
    if (const NodeText* const text = node.text()) return substring(text->units(), range);
    if (!node.isVeryLong() || !selectedTextRange()) return std::nullopt;
    return aroundLongSelection(range);
}

std::optional<std::u16string> AtSpiElement::aroundLongSelection(UTF16Range range) {
    const UTF16Range selected = *selectedTextRange();
    const AtSpiRange ends = *node.rawSelection();
    const std::int64_t end = endOfLongSelection(ends);
    const auto near = [](std::int64_t count) {
        return std::clamp<std::int64_t>(count, 0, farthestAround);
    };
    const std::int64_t before = near(selected.location - range.location);
    const std::int64_t after =
        near(range.location + range.length - selected.location - selected.length);
    const auto head = textBetween(ends.first - before, ends.first);
    const auto middle = textBetween(ends.first, end);
    const auto tail = textBetween(end, end + after);
    if (!head || !middle || !tail) return std::nullopt;
    return lastUnits(*head, before) + *middle + substring(*tail, {0, after});
}

std::optional<ScreenRect> AtSpiElement::boundsForRange(UTF16Range range) {
    const NodeText* const text = node.text();
    if (text && !(node.isTerminal() && range == node.selection())) {
        const AtSpiRange offsets(narrowed(text->toOffset(range.location)),
                                 narrowed(text->toOffset(range.location + range.length)));
        return session.bounds(node, offsets, substring(text->units(), range));
    }
    const auto ends = node.rawSelection();
    if (!ends || selectedTextRange() != range) return std::nullopt;
    return session.bounds(node, *ends, selectedText().value_or(std::u16string()));
}

std::optional<TextMarkerRange> AtSpiElement::selectedTextMarkerRange() {
    AtSpiNode* const page = node.page();
    if (!page) return std::nullopt;
    auto selection = selectionIn(node);
    if (!selection && page != &node) selection = selectionIn(*page);
    if (!selection) return std::nullopt;
    AtSpiNode& block = blockAround(*selection->common);
    const PageText& text = session.pageText(block);
    const auto start = text.offsetOf(selection->start);
    const auto end = text.offsetOf(selection->end);
    if (!start || !end || *end <= *start) return std::nullopt;
    return TextMarkerRange{session.element(&block), {*start, *end - *start}};
}

std::optional<std::u16string> AtSpiElement::stringForTextMarkerRange(const TextMarkerRange& range) {
    AtSpiNode* const of = nodeOf(range.element);
    if (!of) return std::nullopt;
    return substring(session.pageText(*of).units(), range.range);
}

std::optional<ScreenRect> AtSpiElement::boundsForTextMarkerRange(const TextMarkerRange& range) {
    AtSpiNode* const of = nodeOf(range.element);
    if (!of) return std::nullopt;
    std::optional<ScreenRect> all;
    for (const auto& stretch : session.pageText(*of).stretches(range.range, mostStretches)) {
        const NodeText& text = *stretch.node->text();
        const UTF16Range units = withoutBlanksBeforePart(text.units(), stretch.range);
        const AtSpiRange offsets(narrowed(text.toOffset(units.location)),
                                 narrowed(text.toOffset(units.location + units.length)));
        const auto rect = session.bounds(*stretch.node, offsets, substring(text.units(), units));
        if (rect && rect->height > 0) all = all ? united(*all, *rect) : *rect;
    }
    return all;
}

std::optional<TextMarkerRange>
AtSpiElement::textMarkerRangeForUIElement(const ElementRef& element) {
    AtSpiNode* const of = nodeOf(element);
    if (!of || !of->page()) return std::nullopt;
    return wholeText(*of);
}

std::optional<TextMarkerRange>
AtSpiElement::paragraphTextMarkerRangeForTextMarker(const TextMarker& marker) {
    AtSpiNode* const of = nodeOf(marker.element);
    if (!of) return std::nullopt;
    const auto at = session.pageText(*of).stretches({marker.offset, 1}, 1);
    return wholeText(blockAround(at.empty() ? *of : *at.front().node));
}

TextMarkerRange AtSpiElement::wholeText(AtSpiNode& of) {
    return {session.element(&of), {0, length(session.pageText(of).units())}};
}

AtSpiNode* AtSpiElement::nodeOf(const ElementRef& element) {
    auto* const ours = dynamic_cast<AtSpiElement*>(element.get());
    return ours ? &ours->node : nullptr;
}

} // namespace tavik
