#include "UI/Popup/PopupPlacement.h"

#include <algorithm>

namespace tavik::PopupPlacement {
namespace {

constexpr double gapToAnchor = 8;
constexpr double overhangLeft = 12;
constexpr double gapToMouse = 16;
constexpr double leftOfMouse = 20;

ScreenPoint besideAnchor(PopupSize size, const ScreenRect& anchor, const ScreenRect& visible) {
    const double below = anchor.y - gapToAnchor - size.height;
    const double above = anchor.y + anchor.height + gapToAnchor;
    return {anchor.x - overhangLeft, below < visible.y ? above : below};
}

ScreenPoint besideMouse(PopupSize size, ScreenPoint mouse, const ScreenRect& visible) {
    const double below = mouse.y - gapToMouse - size.height;
    const double above = mouse.y + gapToMouse;
    return {mouse.x - leftOfMouse, below < visible.y ? above : below};
}

/// The upper bound counts where both cannot be held.
double bounded(double value, double low, double length, double visibleLength) {
    return std::min(std::max(value, low + margin), low + visibleLength - length - margin);
}

} // namespace

std::optional<std::size_t> screenAt(const std::vector<ScreenRect>& frames, ScreenPoint point) {
    if (frames.empty()) return std::nullopt;
    const auto found = std::ranges::find_if(
        frames, [point](const ScreenRect& frame) { return contains(frame, point); });
    return found == frames.end() ? 0 : static_cast<std::size_t>(found - frames.begin());
}

ScreenRect place(PopupSize size, const std::optional<ScreenRect>& anchor, ScreenPoint mouse,
                 const ScreenRect& visible) {
    const ScreenPoint corner =
        anchor ? besideAnchor(size, *anchor, visible) : besideMouse(size, mouse, visible);
    return {bounded(corner.x, visible.x, size.width, visible.width),
            bounded(corner.y, visible.y, size.height, visible.height), size.width, size.height};
}

ScreenRect refit(const ScreenRect& present, PopupSize size, const ScreenRect& visible) {
    const double y = present.y + present.height - size.height;
    return {present.x, std::max(y, visible.y + margin), size.width, size.height};
}

} // namespace tavik::PopupPlacement
