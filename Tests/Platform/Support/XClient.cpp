#include "Platform/Support/XClient.h"

#include <poll.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <stdexcept>

namespace tavik::test {
namespace {

using Clock = std::chrono::steady_clock;

std::string keyNameOf(xcb_keysym_t symbol) {
    if (symbol >= 'a' && symbol <= 'z') return {static_cast<char>(symbol)};
    if (symbol == 0xffe1) return "Shift_L";
    if (symbol == 0xffe3) return "Control_L";
    if (symbol == 0xffe9) return "Alt_L";
    return {};
}

std::map<xcb_keycode_t, std::string> keysOf(xcb_connection_t* display) {
    const xcb_setup_t* setup = xcb_get_setup(display);
    const xcb_keycode_t first = setup->min_keycode;
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - first + 1);
    const XCBReply<xcb_get_keyboard_mapping_reply_t> reply(xcb_get_keyboard_mapping_reply(
        display, xcb_get_keyboard_mapping(display, first, count), nullptr));
    std::map<xcb_keycode_t, std::string> keys;
    if (!reply) return keys;
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
    for (int i = 0; i < count; ++i) {
        const std::string name = keyNameOf(symbols[i * reply->keysyms_per_keycode]); // NOLINT
        if (!name.empty()) keys.emplace(static_cast<xcb_keycode_t>(first + i), name);
    }
    return keys;
}

} // namespace

XClient::XClient() {
    int screen = 0;
    display.reset(xcb_connect(nullptr, &screen));
    if (xcb_connection_has_error(connection()) != 0) throw std::runtime_error("no X server");
    rootWindow = rootOf(connection(), screen);
    ownWindow = xcb_generate_id(connection());
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection(), XCB_COPY_FROM_PARENT, ownWindow, rootWindow, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
    keys = keysOf(connection());
}

xcb_atom_t XClient::atom(const std::string& name) {
    const auto known = atoms.find(name);
    if (known != atoms.end()) return known->second;
    const auto request =
        xcb_intern_atom(connection(), 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XCBReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection(), request, nullptr));
    if (!reply) throw std::runtime_error("the X server is gone");
    return atoms[name] = reply->atom;
}

std::string XClient::nameOf(xcb_atom_t atom) const {
    const XCBReply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(connection(), xcb_get_atom_name(connection(), atom), nullptr));
    if (!reply) return "none";
    return {xcb_get_atom_name_name(reply.get()), reply->name_len};
}

xcb_window_t XClient::ownerOf(const std::string& selection) {
    const auto request = xcb_get_selection_owner(connection(), atom(selection));
    const XCBReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection(), request, nullptr));
    return reply ? reply->owner : XCB_NONE;
}

xcb_window_t XClient::focus() const {
    const XCBReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr));
    return reply ? reply->focus : XCB_NONE;
}

XClient::Event XClient::nextEvent(std::chrono::milliseconds limit) const {
    xcb_flush(connection());
    const auto end = Clock::now() + limit;
    while (true) {
        if (Event event(xcb_poll_for_event(connection())); event) return event;
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0 || xcb_connection_has_error(connection()) != 0) return nullptr;
        pollfd waiting{xcb_get_file_descriptor(connection()), POLLIN, 0};
        poll(&waiting, 1, static_cast<int>(left) + 1);
    }
}

void XClient::sync() const {
    static_cast<void>(focus());
}

void XClient::pressKey(const std::string& name) const {
    fake(XCB_KEY_PRESS, keyCode(name));
}

void XClient::releaseKey(const std::string& name) const {
    fake(XCB_KEY_RELEASE, keyCode(name));
}

void XClient::clickButton(std::uint8_t button) const {
    fake(XCB_BUTTON_PRESS, button);
    fake(XCB_BUTTON_RELEASE, button);
}

void XClient::movePointer(std::int16_t x, std::int16_t y) const {
    xcb_test_fake_input(connection(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root(), x, y, 0);
    sync();
}

std::string XClient::keyName(xcb_keycode_t code) const {
    const auto found = keys.find(code);
    return found == keys.end() ? std::to_string(code) : found->second;
}

xcb_keycode_t XClient::keyCode(const std::string& name) const {
    const auto found = std::ranges::find(keys, name, [](const auto& each) { return each.second; });
    if (found == keys.end()) throw std::runtime_error("no key " + name);
    return found->first;
}

void XClient::fake(std::uint8_t type, std::uint8_t detail) const {
    xcb_test_fake_input(connection(), type, detail, XCB_CURRENT_TIME, root(), 0, 0, 0);
    sync();
}

} // namespace tavik::test
