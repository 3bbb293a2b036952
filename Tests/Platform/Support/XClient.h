#pragma once

#include "Platform/Linux/X11/XCBHandles.h"

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace tavik::test {

/// A connection of its own to the X server that $DISPLAY names, with a window that nobody sees.
/// Throws `std::runtime_error` where there is none. For one thread.
class XClient {
public:
    using Event = XCBReply<xcb_generic_event_t>;

    XClient();

    xcb_connection_t* connection() const { return display.get(); }

    xcb_window_t root() const { return rootWindow; }

    xcb_window_t window() const { return ownWindow; }

    xcb_atom_t atom(const std::string& name);
    std::string nameOf(xcb_atom_t atom) const;

    /// The window that owns a selection, or XCB_NONE.
    xcb_window_t ownerOf(const std::string& selection);

    /// The window that has the keyboard.
    xcb_window_t focus() const;

    /// Empty when `limit` has passed.
    Event nextEvent(std::chrono::milliseconds limit) const;

    /// Everything asked so far has been done.
    void sync() const;

    /// Presses and releases keys as the user would: "Control_L", "Alt_L", or a letter.
    void pressKey(const std::string& name) const;
    void releaseKey(const std::string& name) const;
    void clickButton(std::uint8_t button = 1) const;
    void movePointer(std::int16_t x, std::int16_t y) const;

    /// The name of the key with that code; a number where it is no key of `pressKey`.
    std::string keyName(xcb_keycode_t code) const;
    xcb_keycode_t keyCode(const std::string& name) const;

private:
    void fake(std::uint8_t type, std::uint8_t detail) const;

    XCBConnection display;
    xcb_window_t rootWindow = XCB_NONE;
    xcb_window_t ownWindow = XCB_NONE;
    std::map<std::string, xcb_atom_t> atoms;
    std::map<xcb_keycode_t, std::string> keys;
};

} // namespace tavik::test
