#pragma once

#include "Platform/Linux/AtSpi/AtSpiNode.h"
#include "Ports/Accessibility.h"

namespace tavik {

class AtSpiSession;

/// A node, as the port speaks of it.
class AtSpiElement final : public AccessibleElement {
public:
    AtSpiElement(AtSpiSession& session, AtSpiNode& node) : session(session), node(node) {}

    void setMessagingTimeout(std::chrono::milliseconds limit) override;

    std::optional<bool> setManualAccessibility() override;
    ElementRef focusedUIElement() override;
    ElementRef focusedWindow() override;

    std::optional<AccessibleRole> role() override;
    ElementRef parent() override;
    std::vector<ElementRef> children(std::size_t limit) override;
    std::optional<std::string> url() override;
    std::optional<std::string> document() override;

    std::optional<std::u16string> value() override;
    std::optional<std::int64_t> numberOfCharacters() override;
    std::optional<std::u16string> selectedText() override;
    std::optional<UTF16Range> selectedTextRange() override;
    std::optional<std::u16string> stringForRange(UTF16Range range) override;
    std::optional<ScreenRect> boundsForRange(UTF16Range range) override;

    std::optional<TextMarkerRange> selectedTextMarkerRange() override;
    std::optional<std::u16string> stringForTextMarkerRange(const TextMarkerRange& range) override;
    std::optional<ScreenRect> boundsForTextMarkerRange(const TextMarkerRange& range) override;
    std::optional<TextMarkerRange> textMarkerRangeForUIElement(const ElementRef& element) override;
    std::optional<TextMarkerRange>
    paragraphTextMarkerRangeForTextMarker(const TextMarker& marker) override;

private:
    /// Null for an element of another kind.
    static AtSpiNode* nodeOf(const ElementRef& element);
    bool hasPlainSelection();
    std::optional<std::u16string> textBetween(std::int64_t start, std::int64_t end);
    std::optional<std::u16string> aroundLongSelection(UTF16Range range);
    TextMarkerRange wholeText(AtSpiNode& of);

    AtSpiSession& session;
    AtSpiNode& node;
};

} // namespace tavik
