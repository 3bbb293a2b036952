#pragma once

#include "Platform/Linux/X11/XCBHandles.h"

#include <chrono>

namespace tavik {

/// Presses keys as a user does and looks who has the keyboard, on a connection of its own. For one
/// thread.
class KeyPresser {
public:
    using Clock = std::chrono::steady_clock;

    /// Throws `std::runtime_error` when there is no server that lets keys be pressed.
    KeyPresser();

    xcb_connection_t* connection() const { return own.get(); }

    /// Holds Alt and D down, and returns the moment before D went down.
    Clock::time_point press() const;

    void release() const;

    /// The window that has the keyboard.
    xcb_window_t focus() const;

private:
    void send(std::uint8_t kind, xcb_keycode_t key) const;
    void flush() const;

    XCBConnection own;
    xcb_keycode_t alt = 0;
    xcb_keycode_t letter = 0;
};

} // namespace tavik
