#include "Platform/Linux/X11/SelectionWindow.h"

#include <poll.h>

#include <algorithm>
#include <utility>

namespace tavik {
namespace {

constexpr std::uint32_t noticed = XCB_EVENT_MASK_PROPERTY_CHANGE;

} // namespace

SelectionWindow::SelectionWindow(const OpenDisplay& display,
                                 std::function<void(const xcb_generic_event_t&)> others)
    : display(display), others(std::move(others)), atomTable(display.connection),
      window(xcb_generate_id(display.connection)) {
    xcb_create_window(display.connection, 0, window, display.root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &noticed);
}

bool SelectionWindow::await(const std::function<bool(const xcb_generic_event_t&)>& isIt,
                            Clock::time_point until) const {
    while (const Event event = nextEvent(until)) {
        if (isIt(*event)) return true;
        others(*event);
    }
    return false;
}

SelectionWindow::Event SelectionWindow::nextEvent(Clock::time_point until) const {
    for (;;) {
        if (Event event{xcb_poll_for_event(connection())}) return event;
        if (xcb_flush(connection()) <= 0) return nullptr;
        // What a flush has read from the server does not end a wait any more.
        if (Event event{xcb_poll_for_queued_event(connection())}) return event;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
        if (left.count() <= 0) return nullptr;
        pollfd server{xcb_get_file_descriptor(connection()), POLLIN, 0};
        poll(&server, 1, static_cast<int>(left.count()));
    }
}

std::optional<xcb_timestamp_t> SelectionWindow::serverTime(Clock::time_point until) const {
    // That nothing is added to it tells the time, too.
    xcb_change_property(connection(), XCB_PROP_MODE_APPEND, window,
                        atomTable[SelectionAtoms::clock], XCB_ATOM_STRING, 8, 0, nullptr);
    std::optional<xcb_timestamp_t> time;
    await(
        [&](const xcb_generic_event_t& event) {
            if (kindOf(event) != XCB_PROPERTY_NOTIFY) return false;
            const auto& change = as<xcb_property_notify_event_t>(event);
            if (change.window != window || change.atom != atomTable[SelectionAtoms::clock])
                return false;
            time = change.time;
            return true;
        },
        until);
    return time;
}

} // namespace tavik
