#include "Platform/Linux/X11/CopyKeystroke.h"

#include "Platform/Linux/X11/Keyboard.h"
#include "Platform/Linux/X11/WindowClients.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <vector>

namespace tavik {
namespace {

std::vector<xcb_atom_t> numbersOf(const SelectionWindow& window, xcb_window_t of, xcb_atom_t name) {
    constexpr std::uint32_t most = 64;
    const auto request =
        xcb_get_property(window.connection(), 0, of, name, XCB_GET_PROPERTY_TYPE_ANY, 0, most);
    const XCBReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(window.connection(), request, nullptr));
    if (!reply || reply->format != 32) return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

bool hasKeyboard(const SelectionWindow& window, xcb_window_t active) {
    const auto request = xcb_get_input_focus(window.connection());
    const XCBReply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(window.connection(), request, nullptr));
    return focus && focus->focus > XCB_INPUT_FOCUS_POINTER_ROOT
           && areOfOneProgram(window.connection(), focus->focus, active);
}

bool isActive(const SelectionWindow& window, xcb_window_t active) {
    const auto found =
        numbersOf(window, window.root(), window.atoms()[SelectionAtoms::activeWindow]);
    return active != XCB_NONE && !found.empty() && found.front() == active;
}

void select(const SelectionWindow& window, std::uint32_t eventsOfRoot) {
    xcb_change_window_attributes(window.connection(), window.root(), XCB_CW_EVENT_MASK,
                                 &eventsOfRoot);
}

/// Also true of a program that does not know the question.
bool answers(const SelectionWindow& window, xcb_window_t asked,
             SelectionWindow::Clock::time_point until) {
    const xcb_atom_t protocols = window.atoms()[SelectionAtoms::protocols];
    const xcb_atom_t ping = window.atoms()[SelectionAtoms::ping];
    const auto known = numbersOf(window, asked, protocols);
    if (std::ranges::find(known, ping) == known.end()) return true;
    const auto time = window.serverTime(until);
    if (!time) return false;
    xcb_client_message_event_t question{};
    question.response_type = XCB_CLIENT_MESSAGE;
    question.format = 32;
    question.window = asked;
    question.type = protocols;
    question.data.data32[0] = ping;
    question.data.data32[1] = *time;
    question.data.data32[2] = asked;
    std::array<char, sizeof(question)> bytes{};
    std::memcpy(bytes.data(), &question, bytes.size());
    // Its answer goes to the root window, by Qt to whoever listens to that window itself.
    select(window, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    xcb_send_event(window.connection(), 0, asked, XCB_EVENT_MASK_NO_EVENT, bytes.data());
    const bool isThere = window.await(
        [&](const xcb_generic_event_t& event) {
            if (kindOf(event) != XCB_CLIENT_MESSAGE) return false;
            const auto& answer = as<xcb_client_message_event_t>(event);
            return answer.window == window.root() && answer.type == protocols && answer.format == 32
                   && answer.data.data32[0] == ping && answer.data.data32[1] == *time
                   && answer.data.data32[2] == asked;
        },
        until);
    select(window, XCB_EVENT_MASK_NO_EVENT);
    return isThere;
}

/// One movement of a key: XCB_KEY_PRESS or XCB_KEY_RELEASE.
struct Stroke {
    std::uint8_t kind;
    xcb_keycode_t key;
};

/// The control key that is pressed for the user: one that he does not hold, for he may let go of it
/// at any moment, and the copy would be a letter. If he holds all there are, one is let go first.
std::optional<xcb_keycode_t> controlKey(const Keyboard& keyboard,
                                        const std::vector<xcb_keycode_t>& held,
                                        std::vector<Stroke>& strokes) {
    const auto keys = keyboard.controlKeys();
    if (keys.empty()) return std::nullopt;
    const auto isFree = [&](xcb_keycode_t key) {
        return std::ranges::find(held, key) == held.end();
    };
    const auto free = std::ranges::find_if(keys, isFree);
    if (free != keys.end()) return *free;
    strokes.push_back({XCB_KEY_RELEASE, keys.front()});
    return keys.front();
}

/// Nothing where the keyboard has no such keys, or is in a state in which they mean something else.
std::vector<Stroke> strokesOfCopy(const Keyboard& keyboard) {
    const auto c = keyboard.keyOfC();
    if (!c || keyboard.hasLatchedModifier()) return {};
    const auto held = keyboard.heldKeys();
    std::vector<Stroke> strokes;
    // The hot key itself, so that it neither goes on grabbing the keyboard nor repeats itself as a
    // letter, and shift, for with the control key it switches between layouts in some settings.
    for (const xcb_keycode_t key : held)
        if (!keyboard.isControl(key) && !keyboard.isCommandModifier(key))
            strokes.push_back({XCB_KEY_RELEASE, key});
    std::vector<Stroke> lettingGo;
    for (const xcb_keycode_t key : held)
        if (keyboard.isCommandModifier(key)) lettingGo.push_back({XCB_KEY_RELEASE, key});
    const auto control = controlKey(keyboard, held, strokes);
    if (!control) return {};
    const bool isSwitch = keyboard.switchesLayout(*control)
                          || std::ranges::any_of(lettingGo, [&](const Stroke& each) {
                                 return keyboard.switchesLayout(each.key);
                             });
    // Alt must not be all that is seen of a keystroke: alone it opens menus. But Ctrl and Alt
    // together may switch between layouts, too.
    const Stroke pressControl{XCB_KEY_PRESS, *control};
    if (!isSwitch) strokes.push_back(pressControl);
    strokes.insert(strokes.end(), lettingGo.begin(), lettingGo.end());
    if (isSwitch) strokes.push_back(pressControl);
    for (const Stroke& stroke : {Stroke{XCB_KEY_PRESS, *c}, Stroke{XCB_KEY_RELEASE, *c},
                                 Stroke{XCB_KEY_RELEASE, *control}})
        strokes.push_back(stroke);
    return strokes;
}

/// While it lives no other program gets anything done at the server, so that what was seen still
/// holds when keys are pressed.
class ServerGrab {
public:
    explicit ServerGrab(xcb_connection_t* connection) : connection(connection) {
        xcb_grab_server(connection);
    }

    ~ServerGrab() {
        xcb_ungrab_server(connection);
        xcb_flush(connection);
    }

    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;

private:
    xcb_connection_t* connection;
};

} // namespace

bool canPressKeys(xcb_connection_t* connection) {
    const auto* extension = xcb_get_extension_data(connection, &xcb_test_id);
    return extension != nullptr && extension->present != 0;
}

bool pressCopyKeys(const SelectionWindow& window, xcb_window_t active,
                   const std::function<bool()>& isPermitted,
                   SelectionWindow::Clock::time_point until) {
    if (!answers(window, active, until)) return false;
    const ServerGrab grab(window.connection());
    const auto strokes = strokesOfCopy(Keyboard(window.connection(), window.root()));
    if (strokes.empty() || !isActive(window, active) || !hasKeyboard(window, active)) return false;
    if (!isPermitted() || SelectionWindow::Clock::now() >= until) return false;
    for (const Stroke& stroke : strokes)
        xcb_test_fake_input(window.connection(), stroke.kind, stroke.key, XCB_CURRENT_TIME,
                            XCB_NONE, 0, 0, 0);
    const auto request = xcb_get_input_focus(window.connection());
    const XCBReply<xcb_get_input_focus_reply_t> whenDone(
        xcb_get_input_focus_reply(window.connection(), request, nullptr));
    return whenDone != nullptr;
}

} // namespace tavik
