#include "Platform/Linux/X11/UserActivity.h"

#include "Platform/Linux/X11/InputExtension.h"

#include <xcb/xinput.h>

namespace tavik {
UserActivity::UserActivity(const SelectionWindow& window)
    : window(window), extension(inputExtension(window.connection())) {}

void UserActivity::start() {
    stop();
    isRunning = true;
    select(XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE
           | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN);
    keyboard.emplace(window.connection(), window.root());
    for (const xcb_keycode_t key : keyboard->heldKeys())
        if (keyboard->makesCommands(key)) held.insert(key);
}

void UserActivity::stop() {
    if (isRunning) select(0);
    isRunning = false;
    held.clear();
    isArmed = false;
    noticed = 0;
    wasKey = false;
}

void UserActivity::select(std::uint32_t events) const {
    if (extension != 0) selectRawEvents(window.connection(), window.root(), events);
}

void UserActivity::handle(const xcb_generic_event_t& event) {
    if (kindOf(event) != XCB_GE_GENERIC || !isRunning) return;
    const auto& generic = as<xcb_ge_generic_event_t>(event);
    if (extension == 0 || generic.extension != extension) return;
    if (generic.event_type == XCB_INPUT_RAW_BUTTON_PRESS
        || generic.event_type == XCB_INPUT_RAW_TOUCH_BEGIN)
        note(false);
    if (generic.event_type != XCB_INPUT_RAW_KEY_PRESS
        && generic.event_type != XCB_INPUT_RAW_KEY_RELEASE)
        return;
    const auto& touch = as<xcb_input_raw_key_press_event_t>(event);
    const auto key = static_cast<xcb_keycode_t>(touch.detail);
    if (generic.event_type == XCB_INPUT_RAW_KEY_RELEASE)
        held.erase(key);
    else if ((touch.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) == 0 && mayCopy(key))
        note(true);
}

bool UserActivity::mayCopy(xcb_keycode_t key) {
    if (keyboard->makesCommands(key)) {
        held.insert(key);
        isArmed = true;
        return false;
    }
    if (keyboard->isModifier(key)) return false;
    const bool isCommand = isArmed || !held.empty();
    isArmed = false;
    return isCommand || keyboard->writesNothing(key) || keyboard->writesY(key);
}

void UserActivity::note(bool isKey) {
    ++noticed;
    wasKey = isKey;
}

void UserActivity::forgiveLastKey() {
    if (wasKey && noticed > 0) --noticed;
    wasKey = false;
}

} // namespace tavik
