#include "Platform/Linux/AtSpi/DisplayScale.h"

#include <algorithm>
#include <cmath>

namespace tavik {
namespace {

/// How many times as large as `described` the rectangle in pixels is.
struct Ratio {
    double across;
    double down;

    Ratio(const ScreenRect& pixels, const ScreenRect& described)
        : across(pixels.width / described.width), down(pixels.height / described.height) {}

    /// Desktops offer quarters.
    double scale() const { return std::round(across * 4) / 4; }

    double error() const {
        return std::max(std::abs(across - scale()), std::abs(down - scale())) / scale();
    }

    bool isScale() const {
        constexpr double largest = 4;
        constexpr double tolerance = 0.04;
        return scale() >= 1 && scale() <= largest && error() <= tolerance;
    }
};

} // namespace

DisplayScale::DisplayScale(const FrontApplication& front, const ScreenRect& described) {
    if (described.width <= 0 || described.height <= 0) return;
    // Some tell of the window without its frame, some with it.
    const Ratio toContents(front.contents, described);
    const Ratio toFrame(front.frame, described);
    const bool isFrame = toFrame.isScale() && !(toContents.error() <= toFrame.error());
    const Ratio& ratio = isFrame ? toFrame : toContents;
    const ScreenRect& window = isFrame ? front.frame : front.contents;
    // Where a unit is a pixel, there is nothing to shift either.
    if (!ratio.isScale() || ratio.scale() == 1) return;
    scale = ratio.scale();
    shiftX = window.x - described.x * scale;
    shiftY = window.y - described.y * scale;
}

ScreenRect DisplayScale::pixels(const ScreenRect& rect) const {
    return {rect.x * scale + shiftX, rect.y * scale + shiftY, rect.width * scale,
            rect.height * scale};
}

bool standsInWindow(const ScreenRect& rect, const FrontApplication& front) {
    constexpr double tolerance = 4;
    const ScreenRect& window = front.frame;
    return rect.x + rect.width >= window.x - tolerance
           && rect.x <= window.x + window.width + tolerance
           && rect.y + rect.height >= window.y - tolerance
           && rect.y <= window.y + window.height + tolerance;
}

} // namespace tavik
