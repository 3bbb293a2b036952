#pragma once

#include "Platform/Linux/AtSpi/AtSpiCalls.h"
#include "Platform/Linux/AtSpi/AtSpiNode.h"
#include "Platform/Linux/AtSpi/DisplayScale.h"
#include "Platform/Linux/AtSpi/PageText.h"
#include "Ports/Accessibility.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace tavik {

/// The applications that have been read before. Safe from any thread.
class AtSpiAcquaintances {
public:
    /// Whether this is the first meeting with the application of that name on the bus.
    bool meet(const std::string& bus);

private:
    std::mutex lock;
    std::set<std::string> met;
};

/// One reading of the desktop over the accessibility bus. What was read once is not asked again:
/// the answers are those of one moment.
class AtSpiSession final : public AccessibilitySession {
public:
    /// Without a connection every call fails.
    AtSpiSession(std::shared_ptr<GDBusConnection> connection, std::optional<FrontApplication> front,
                 AtSpiConnection::Deadline deadline, AtSpiAcquaintances& acquaintances);

    ElementRef systemWideElement() override;
    ElementRef applicationElement(std::int64_t processIdentifier) override;
    bool hasTimedOut() const override;

    // For its elements.

    AtSpiCalls& calls() { return atSpiCalls; }

    /// Null for null.
    ElementRef element(AtSpiNode* node);
    /// The text of a node of a page.
    const PageText& pageText(AtSpiNode& node);
    /// The window in which the user works: of an application, or of whichever says so if that is
    /// the desktop and nobody knows better.
    AtSpiNode* activeWindowBelow(AtSpiNode& node);
    AtSpiNode* focusBelow(AtSpiNode& node);

    /// Whether it was the last to be found focused.
    bool isFocus(const AtSpiNode& node) const { return &node == lastFocus; }

    /// Where the stretch of the node's text stands, in the application's counting. `selected` is
    /// the text there.
    std::optional<ScreenRect> bounds(AtSpiNode& node, AtSpiRange range,
                                     std::u16string_view selected);

private:
    AtSpiNode* focusAtOnce(AtSpiNode& node);
    std::optional<ScreenRect> extentsOnceMeasured(AtSpiNode& node, AtSpiRange range,
                                                  std::u16string_view selected);
    ScreenRect inPixels(const ScreenRect& described);

    AtSpiCalls atSpiCalls;
    AtSpiTree tree;
    AtSpiAcquaintances& acquaintances;
    std::optional<FrontApplication> front;
    std::map<AtSpiNode*, ElementRef> elements;
    std::map<AtSpiNode*, PageText> pageTexts;
    std::map<AtSpiNode*, AtSpiNode*> windows;
    AtSpiNode* lastFocus = nullptr;
    /// The window that was last said to be active.
    AtSpiNode* reading = nullptr;
    std::optional<DisplayScale> scale;
    /// How often an application may still be given time to measure a text.
    int pausesLeft = 3;
};

} // namespace tavik
