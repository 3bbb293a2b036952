#pragma once

#include "Base/ScreenGeometry.h"

#include <cstdint>
#include <vector>

namespace tavik {

/// A monitor. Rectangles are in physical pixels from the top left of the desktop.
struct Screen {
    ScreenRect frame;
    /// Without the panels at its edges.
    ScreenRect visibleFrame;
    /// Physical pixels to a unit in which windows are laid out.
    double scale = 1;
};

/// What windows of ours need of the window system, above all the small ones that no window manager
/// cares for. For the main thread; as quick as the window system.
class WindowSystem {
public:
    virtual ~WindowSystem() = default;

    /// The primary one first. Never empty while there is a display.
    virtual std::vector<Screen> screens() = 0;

    /// In physical pixels from the top left of the desktop.
    virtual ScreenPoint pointer() = 0;

    /// Whether windows may be translucent.
    virtual bool hasCompositor() = 0;

    /// Lets what is clicked outside `part` of the window go to what lies below it. Physical pixels
    /// from the window's own top left.
    virtual void limitClicks(std::uint32_t window, const ScreenRect& part) = 0;

    /// Gives a window of ours, which must be shown, the keyboard, and remembers who had it.
    virtual void takeKeyboard(std::uint32_t window) = 0;

    /// Before the window is hidden: gives the keyboard back to whom it was taken from, if the
    /// window still has it.
    virtual void returnKeyboard(std::uint32_t window) = 0;

    /// Asks the window manager to bring a window of ours that it cares for to the front, with the
    /// keyboard, because the user wants it.
    virtual void bringToFront(std::uint32_t window) = 0;
};

} // namespace tavik
