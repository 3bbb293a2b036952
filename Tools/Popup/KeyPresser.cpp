#include "KeyPresser.h"

#include "Platform/Linux/X11/Keyboard.h"

#include <xcb/xtest.h>

#include <stdexcept>

namespace tavik {
namespace {

constexpr xcb_keysym_t leftAlt = 0xffe9;
constexpr xcb_keysym_t letterD = 0x64;

xcb_keycode_t keyMeaning(const Keyboard& keyboard, xcb_keysym_t meaning) {
    const auto keys = keyboard.keysMeaning(meaning);
    if (keys.empty()) throw std::runtime_error("the keyboard lacks a key");
    return keys.front();
}

} // namespace

KeyPresser::KeyPresser() : own(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(own.get()) != 0) throw std::runtime_error("no X server");
    const auto* extension = xcb_get_extension_data(own.get(), &xcb_test_id);
    if (extension == nullptr || extension->present == 0)
        throw std::runtime_error("the X server lets nobody press keys");
    const Keyboard keyboard(own.get(), rootOf(own.get(), 0));
    alt = keyMeaning(keyboard, leftAlt);
    letter = keyMeaning(keyboard, letterD);
}

KeyPresser::Clock::time_point KeyPresser::press() const {
    send(XCB_KEY_PRESS, alt);
    flush();
    const auto moment = Clock::now();
    send(XCB_KEY_PRESS, letter);
    flush();
    return moment;
}

void KeyPresser::release() const {
    send(XCB_KEY_RELEASE, letter);
    send(XCB_KEY_RELEASE, alt);
    flush();
}

xcb_window_t KeyPresser::focus() const {
    const XCBReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(own.get(), xcb_get_input_focus(own.get()), nullptr));
    return reply ? reply->focus : xcb_window_t{XCB_NONE};
}

void KeyPresser::send(std::uint8_t kind, xcb_keycode_t key) const {
    xcb_test_fake_input(own.get(), kind, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

void KeyPresser::flush() const {
    static_cast<void>(xcb_flush(own.get()));
}

} // namespace tavik
