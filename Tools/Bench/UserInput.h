#pragma once

#include "Platform/Linux/X11/XCBHandles.h"

#include <QPoint>
#include <chrono>
#include <map>
#include <vector>

namespace tavik {

/// Keys and a mouse as a user has them, on a connection of its own. For one thread.
///
/// All but `typeAhead` return the moment before the server was told, and do not wait for it.
class UserInput {
public:
    using Moment = std::chrono::steady_clock::time_point;

    enum Key : xcb_keysym_t { backspace = 0xff08, pageDown = 0xff56, down = 0xff54 };

    /// Throws `std::runtime_error` when there is no server that lets keys be pressed.
    UserInput();

    /// Presses a key and lets it go. Throws `std::runtime_error` when the keyboard lacks it.
    Moment tap(xcb_keysym_t key);

    /// Taps all keys, and returns when they wait to be read by those who have the keyboard.
    void typeAhead(const std::vector<xcb_keysym_t>& keys);

    /// One notch down.
    Moment turnWheel();

    /// `place` is in pixels from the top left of the desktop.
    Moment movePointer(QPoint place);

    Moment holdButton();
    Moment releaseButton();

private:
    void send(std::uint8_t kind, std::uint8_t detail, QPoint place = {});
    void sendKey(xcb_keysym_t key);
    Moment flush();
    xcb_keycode_t codeOf(xcb_keysym_t key);

    XCBConnection own;
    std::map<xcb_keysym_t, xcb_keycode_t> codes;
};

} // namespace tavik
