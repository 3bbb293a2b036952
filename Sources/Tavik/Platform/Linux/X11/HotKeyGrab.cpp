#include "Platform/Linux/X11/HotKeyGrab.h"

#include "Platform/Linux/X11/InputExtension.h"
#include "Platform/Linux/X11/SelectionWindow.h"

#include <X11/keysym.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <utility>

namespace tavik {
namespace {

/// A change of layout comes as many notices.
constexpr std::chrono::milliseconds timeOfChange{50};

std::uint16_t modifierOr(std::uint16_t fallback, std::uint16_t found) {
    return found != 0 ? found : fallback;
}

std::uint16_t bitsOf(std::uint32_t modifiers, const Keyboard& keyboard) {
    std::uint16_t bits = 0;
    if ((modifiers & 0x1000U) != 0) bits |= XCB_MOD_MASK_CONTROL;
    if ((modifiers & 0x200U) != 0) bits |= XCB_MOD_MASK_SHIFT;
    if ((modifiers & 0x800U) != 0)
        bits |= modifierOr(XCB_MOD_MASK_1, keyboard.modifierOf({XK_Alt_L, XK_Alt_R}));
    if ((modifiers & 0x100U) != 0)
        bits |= modifierOr(XCB_MOD_MASK_4, keyboard.modifierOf({XK_Super_L, XK_Super_R}));
    return bits;
}

} // namespace

HotKeyGrab::HotKeyGrab(Tell tell) : tell(std::move(tell)) {}

void HotKeyGrab::take(const OpenDisplay& on, const Wish& combination) {
    release(on);
    wish = combination;
    const bool isOurs = followLayout();
    tell(combination.number, isOurs ? Notice::held : Notice::refused);
    if (!isOurs) wish.reset();
}

void HotKeyGrab::release(const OpenDisplay& on) {
    display = on;
    ungrab();
    wish.reset();
    nextLook.reset();
}

/// Holds the keys that make the combination now; whether nobody else has one of them.
bool HotKeyGrab::followLayout() {
    const Grabs wanted = grabsFor(*wish, Keyboard(display->connection, display->root));
    if (wanted == held) return true;
    ungrab();
    if (!areFree(wanted)) return false;
    held = wanted;
    if (!grabAll(wanted)) ungrab();
    return isHeld();
}

/// The locks of the keyboard are part of a combination for the server, so each is asked for.
HotKeyGrab::Grabs HotKeyGrab::grabsFor(const Wish& wish, const Keyboard& keyboard) {
    auto keys = keyboard.keysMeaning(wish.keysym);
    if (keys.empty()) keys.push_back(wish.placeOnKeyboard);
    const std::uint16_t bits = bitsOf(wish.modifiers, keyboard);
    const std::uint16_t numLock = keyboard.modifierOf({XK_Num_Lock});
    Grabs grabs;
    for (const xcb_keycode_t key : keys)
        for (const unsigned locks : {0U, unsigned{XCB_MOD_MASK_LOCK}})
            for (const unsigned more : {0U, unsigned{numLock}})
                grabs.push_back({key, static_cast<std::uint16_t>(bits | locks | more)});
    return grabs;
}

/// A grab by way of the input extension, such as GNOME's, collides with others of its kind only, so
/// one is tried. It has to go before ours comes, or it would take ours along.
bool HotKeyGrab::areFree(const Grabs& grabs) {
    if (!canAskInputExtension()) return true;
    return std::ranges::all_of(grabs, [this](const Grab& grab) {
        xcb_connection_t* const connection = display->connection;
        const std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
        const std::uint32_t modifiers = grab.modifiers;
        const auto request = xcb_input_xi_passive_grab_device(
            connection, XCB_CURRENT_TIME, display->root, XCB_NONE, grab.key,
            XCB_INPUT_DEVICE_ALL_MASTER, 1, 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
            XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER,
            &events, &modifiers);
        const XCBReply<xcb_input_xi_passive_grab_device_reply_t> refusals(
            xcb_input_xi_passive_grab_device_reply(connection, request, nullptr));
        xcb_input_xi_passive_ungrab_device(connection, display->root, grab.key,
                                           XCB_INPUT_DEVICE_ALL_MASTER, 1,
                                           XCB_INPUT_GRAB_TYPE_KEYCODE, &modifiers);
        return refusals && refusals->num_modifiers == 0;
    });
}

bool HotKeyGrab::canAskInputExtension() {
    if (!hasInputExtension) hasInputExtension = inputExtension(display->connection) != 0;
    return *hasInputExtension;
}

bool HotKeyGrab::grabAll(const Grabs& grabs) const {
    std::vector<xcb_void_cookie_t> requests;
    for (const Grab& grab : grabs)
        requests.push_back(xcb_grab_key_checked(display->connection, 0, display->root,
                                                grab.modifiers, grab.key, XCB_GRAB_MODE_ASYNC,
                                                XCB_GRAB_MODE_ASYNC));
    bool areOurs = true;
    for (const xcb_void_cookie_t request : requests)
        if (XCBReply<xcb_generic_error_t>(xcb_request_check(display->connection, request)))
            areOurs = false;
    return areOurs && xcb_connection_has_error(display->connection) == 0;
}

void HotKeyGrab::ungrab() {
    for (const Grab& grab : held)
        xcb_ungrab_key(display->connection, grab.key, display->root, grab.modifiers);
    held.clear();
}

void HotKeyGrab::handle(const xcb_generic_event_t& event) {
    if (!wish) return;
    const auto touch = [&event] {
        const auto& key = as<xcb_key_press_event_t>(event);
        return Touch{key.detail, key.time};
    };
    switch (kindOf(event)) {
    case XCB_KEY_PRESS:
        notePress(touch());
        break;
    case XCB_KEY_RELEASE:
        lastRelease = touch();
        noteRelease(lastRelease->key);
        break;
    case XCB_GE_GENERIC:
        if (as<xcb_ge_generic_event_t>(event).event_type == XCB_INPUT_RAW_KEY_RELEASE)
            noteRelease(
                static_cast<xcb_keycode_t>(as<xcb_input_raw_key_release_event_t>(event).detail));
        break;
    case XCB_MAPPING_NOTIFY:
        if (as<xcb_mapping_notify_event_t>(event).request != XCB_MAPPING_POINTER && !nextLook)
            nextLook = Moment::clock::now() + timeOfChange;
        break;
    default:
        break;
    }
}

/// A key that repeats comes up and goes down in the same millisecond, or is grabbed again while it
/// is down.
void HotKeyGrab::notePress(const Touch& press) {
    const bool isRepetition = lastRelease == press || keyDown == press.key;
    const bool isOurs =
        std::ranges::any_of(held, [&](const Grab& grab) { return grab.key == press.key; });
    if (!isOurs || isRepetition) return;
    letKeyboardGo(press.key);
    tell(wish->number, Notice::pressed);
}

/// While the keyboard is grabbed, some applications call nothing focused, and their selection
/// cannot be read. So it is theirs again before the key comes up, of which raw events tell.
void HotKeyGrab::letKeyboardGo(xcb_keycode_t key) {
    if (!canAskInputExtension()) return;
    xcb_connection_t* const connection = display->connection;
    selectRawEvents(connection, display->root, XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE);
    xcb_ungrab_keyboard(connection, XCB_CURRENT_TIME);
    keyDown = key;
    const XCBReply<xcb_query_keymap_reply_t> keys(
        xcb_query_keymap_reply(connection, xcb_query_keymap(connection), nullptr));
    const bool isDown = keys && ((keys->keys[key / 8] >> (key % 8)) & 1) != 0;
    if (!isDown) noteRelease(key);
}

void HotKeyGrab::noteRelease(xcb_keycode_t key) {
    if (keyDown != key) return;
    keyDown.reset();
    selectRawEvents(display->connection, display->root, 0);
}

void HotKeyGrab::disconnected() {
    display.reset();
    hasInputExtension.reset();
    lastRelease.reset();
    keyDown.reset();
    nextLook.reset();
    const bool wasHeld = isHeld();
    held.clear();
    const auto lost = std::exchange(wish, std::nullopt);
    if (wasHeld && lost) tell(lost->number, Notice::lost);
}

std::optional<DisplayListener::Moment> HotKeyGrab::nextMoment() const {
    return nextLook;
}

void HotKeyGrab::momentHasCome() {
    nextLook.reset();
    if (wish) tell(wish->number, followLayout() ? Notice::held : Notice::refused);
}

} // namespace tavik
