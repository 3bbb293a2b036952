#pragma once

#include "Platform/Linux/X11/ServerClock.h"
#include "Platform/Linux/X11/XCBHandles.h"
#include "Ports/WindowSystem.h"

#include <optional>
#include <set>

namespace tavik {

/// The window system of an X server, asked on Qt's own connection: so what is asked here comes
/// after what Qt has asked before, and a window that Qt has shown can get the keyboard at once.
class X11WindowSystem final : public WindowSystem {
public:
    /// For a QGuiApplication on the platform "xcb", which must outlive it.
    X11WindowSystem();
    ~X11WindowSystem() override = default;
    X11WindowSystem(const X11WindowSystem&) = delete;
    X11WindowSystem& operator=(const X11WindowSystem&) = delete;

    std::vector<Screen> screens() override;
    ScreenPoint pointer() override;
    bool hasCompositor() override;
    void limitClicks(std::uint32_t window, const ScreenRect& part) override;
    void takeKeyboard(std::uint32_t window) override;
    /// The keyboard has moved when this returns.
    void returnKeyboard(std::uint32_t window) override;
    void bringToFront(std::uint32_t window) override;

private:
    /// Who has the keyboard, and what becomes of it when that window goes.
    struct Focus {
        xcb_window_t window = XCB_NONE;
        std::uint8_t revertTo = XCB_INPUT_FOCUS_POINTER_ROOT;
    };

    std::optional<Focus> focus() const;
    bool hasKeyboard(xcb_window_t window) const;
    bool setFocus(const Focus& focus) const;
    bool contains(xcb_window_t window, xcb_window_t inner) const;
    xcb_window_t activeWindow() const;

    xcb_connection_t* connection;
    int screenNumber;
    xcb_window_t root;
    bool canLimitClicks;
    /// Who had the keyboard before the first of the windows that have taken it since.
    std::optional<Focus> former;
    std::set<xcb_window_t> takers;
    ServerClock clock;
    /// By the server's clock.
    xcb_timestamp_t takenAt = XCB_CURRENT_TIME;
};

} // namespace tavik
