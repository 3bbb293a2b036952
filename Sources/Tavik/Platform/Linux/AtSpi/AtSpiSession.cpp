#include "Platform/Linux/AtSpi/AtSpiSession.h"

#include "Platform/Linux/AtSpi/AtSpiElement.h"
#include "Platform/Linux/AtSpi/AtSpiFocus.h"
#include "Platform/Linux/AtSpi/QtExtents.h"

#include <chrono>
#include <utility>

namespace tavik {
namespace {

/// Firefox begins to describe its pages when it is first asked about them, and answers meanwhile.
constexpr int mostQuestions = 7;
constexpr std::chrono::milliseconds whileTreeIsMade{100};

/// A page that has just appeared is measured soon after it was asked about for the first time.
constexpr std::chrono::milliseconds betweenQuestions{40};

} // namespace

AtSpiSession::AtSpiSession(std::shared_ptr<GDBusConnection> connection,
                           std::optional<FrontApplication> front,
                           AtSpiConnection::Deadline deadline, AtSpiAcquaintances& acquaintances)
    : atSpiCalls(std::move(connection), deadline), tree(atSpiCalls), acquaintances(acquaintances),
      front(std::move(front)) {}

bool AtSpiAcquaintances::meet(const std::string& bus) {
    constexpr std::size_t most = 1000;
    const std::lock_guard held(lock);
    if (met.size() >= most) met.clear();
    return met.insert(bus).second;
}

ElementRef AtSpiSession::systemWideElement() {
    return element(tree.node(AtSpiCalls::desktop()));
}

ElementRef AtSpiSession::applicationElement(std::int64_t processIdentifier) {
    return element(applicationOf(tree, processIdentifier, front));
}

bool AtSpiSession::hasTimedOut() const {
    return atSpiCalls.hasTimedOut();
}

ElementRef AtSpiSession::element(AtSpiNode* node) {
    if (!node) return nullptr;
    ElementRef& kept = elements[node];
    if (!kept) kept = std::make_shared<AtSpiElement>(*this, *node);
    return kept;
}

const PageText& AtSpiSession::pageText(AtSpiNode& node) {
    return pageTexts.try_emplace(&node, node).first->second;
}

AtSpiNode* AtSpiSession::activeWindowBelow(AtSpiNode& node) {
    if (const auto known = windows.find(&node); known != windows.end()) return known->second;
    const std::string title = front ? front->windowTitle : std::string();
    AtSpiNode* window = nullptr;
    if (!(node.reference() == AtSpiCalls::desktop()))
        window = activeWindowOf(tree, node, title);
    else if (!front)
        window = activeWindow(tree, {});
    if (window) reading = window;
    return windows[&node] = window;
}

AtSpiNode* AtSpiSession::focusBelow(AtSpiNode& node) {
    const bool isNew = acquaintances.meet(node.reference().bus);
    AtSpiNode* focus = focusAtOnce(node);
    const auto isReady = [&focus] {
        AtSpiNode* const page = focus ? focus->page() : nullptr;
        return focus && (!page || selectionIn(*focus) || selectionIn(*page));
    };
    if (!isNew || !tree.isOfToolkit(node.reference(), "Gecko")) return focus;
    for (int question = 0; question < mostQuestions && !isReady(); ++question) {
        atSpiCalls.pause(whileTreeIsMade);
        tree.forget();
        windows.clear();
        focus = focusAtOnce(node);
    }
    return focus;
}

AtSpiNode* AtSpiSession::focusAtOnce(AtSpiNode& node) {
    AtSpiNode* const window = activeWindowBelow(node);
    lastFocus = window ? focusedIn(tree, *window) : nullptr;
    return lastFocus;
}

std::optional<ScreenRect> AtSpiSession::bounds(AtSpiNode& node, AtSpiRange range,
                                               std::u16string_view selected) {
    // There Chromium keeps the places of before the outer page was scrolled.
    if (tree.isOfToolkit(node.reference(), "Chromium") && node.isInInnerPage()) return std::nullopt;
    const auto extents = extentsOnceMeasured(node, range, selected);
    if (!extents) return std::nullopt;
    const ScreenRect rect = inPixels(*extents);
    if (front && !standsInWindow(rect, *front)) return std::nullopt;
    return rect;
}

std::optional<ScreenRect> AtSpiSession::extentsOnceMeasured(AtSpiNode& node, AtSpiRange range,
                                                            std::u16string_view selected) {
    if (tree.isOfToolkit(node.reference(), "Qt"))
        return qtRangeExtents(atSpiCalls, node.reference(), range);
    auto extents = atSpiCalls.rangeExtents(node.reference(), range);
    while (extents && looksUnmeasured(selected, extents->width, extents->height)
           && pausesLeft > 0) {
        --pausesLeft;
        atSpiCalls.pause(betweenQuestions);
        extents = atSpiCalls.rangeExtents(node.reference(), range);
    }
    return extents;
}

ScreenRect AtSpiSession::inPixels(const ScreenRect& described) {
    if (!scale) {
        scale.emplace();
        const auto window =
            front && reading ? atSpiCalls.extents(reading->reference()) : std::nullopt;
        if (window) scale.emplace(*front, *window);
    }
    return scale->pixels(described);
}

} // namespace tavik
