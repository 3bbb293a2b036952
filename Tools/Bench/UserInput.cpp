#include "UserInput.h"

#include "Platform/Linux/X11/Keyboard.h"

#include <xcb/xtest.h>

#include <stdexcept>
#include <thread>

namespace tavik {
namespace {

constexpr std::uint8_t leftButton = 1;
constexpr std::uint8_t wheelDown = 5;
/// For what the server has sent to be read by the thread that does so.
constexpr std::chrono::milliseconds transport{20};

} // namespace

UserInput::UserInput() : own(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(own.get()) != 0) throw std::runtime_error("no X server");
    const auto* extension = xcb_get_extension_data(own.get(), &xcb_test_id);
    if (extension == nullptr || extension->present == 0)
        throw std::runtime_error("the X server lets nobody press keys");
}

UserInput::Moment UserInput::tap(xcb_keysym_t key) {
    sendKey(key);
    return flush();
}

void UserInput::typeAhead(const std::vector<xcb_keysym_t>& keys) {
    for (const xcb_keysym_t key : keys)
        sendKey(key);
    const XCBReply<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(own.get(), xcb_get_input_focus(own.get()), nullptr));
    std::this_thread::sleep_for(transport);
}

UserInput::Moment UserInput::turnWheel() {
    send(XCB_BUTTON_PRESS, wheelDown);
    send(XCB_BUTTON_RELEASE, wheelDown);
    return flush();
}

UserInput::Moment UserInput::movePointer(QPoint place) {
    send(XCB_MOTION_NOTIFY, 0, place);
    return flush();
}

UserInput::Moment UserInput::holdButton() {
    send(XCB_BUTTON_PRESS, leftButton);
    return flush();
}

UserInput::Moment UserInput::releaseButton() {
    send(XCB_BUTTON_RELEASE, leftButton);
    return flush();
}

void UserInput::send(std::uint8_t kind, std::uint8_t detail, QPoint place) {
    xcb_test_fake_input(own.get(), kind, detail, XCB_CURRENT_TIME, rootOf(own.get(), 0),
                        static_cast<std::int16_t>(place.x()), static_cast<std::int16_t>(place.y()),
                        0);
}

void UserInput::sendKey(xcb_keysym_t key) {
    const xcb_keycode_t code = codeOf(key);
    send(XCB_KEY_PRESS, code);
    send(XCB_KEY_RELEASE, code);
}

UserInput::Moment UserInput::flush() {
    const Moment moment = std::chrono::steady_clock::now();
    static_cast<void>(xcb_flush(own.get()));
    return moment;
}

xcb_keycode_t UserInput::codeOf(xcb_keysym_t key) {
    if (!codes.contains(key)) {
        const auto found = Keyboard(own.get(), rootOf(own.get(), 0)).keysMeaning(key);
        if (found.empty()) throw std::runtime_error("the keyboard lacks a key");
        codes[key] = found.front();
    }
    return codes[key];
}

} // namespace tavik
