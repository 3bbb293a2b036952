#pragma once

#include "Platform/Linux/X11/DisplayThread.h"
#include "Platform/Linux/X11/SelectionAtoms.h"

#include <chrono>
#include <functional>
#include <optional>

namespace tavik {

/// A window of our own that nobody sees, with which we take part in selections, and the events of
/// its connection. For the display's thread.
class SelectionWindow {
public:
    using Clock = std::chrono::steady_clock;
    using Event = XCBReply<xcb_generic_event_t>;

    /// `others` gets what a wait does not wait for.
    SelectionWindow(const OpenDisplay& display,
                    std::function<void(const xcb_generic_event_t&)> others);
    /// Goes with its connection.
    ~SelectionWindow() = default;
    SelectionWindow(const SelectionWindow&) = delete;
    SelectionWindow& operator=(const SelectionWindow&) = delete;

    xcb_connection_t* connection() const { return display.connection; }

    xcb_window_t root() const { return display.root; }

    xcb_window_t id() const { return window; }

    const SelectionAtoms& atoms() const { return atomTable; }

    /// Whether `isIt` took an event before `until`; the others go their way.
    bool await(const std::function<bool(const xcb_generic_event_t&)>& isIt,
               Clock::time_point until) const;

    /// The server's clock; nothing when it does not tell in time.
    std::optional<xcb_timestamp_t> serverTime(Clock::time_point until) const;

private:
    Event nextEvent(Clock::time_point until) const;

    OpenDisplay display;
    std::function<void(const xcb_generic_event_t&)> others;
    SelectionAtoms atomTable;
    xcb_window_t window;
};

/// The kind of an event, also of one that a program has sent.
inline int kindOf(const xcb_generic_event_t& event) {
    return event.response_type & 0x7f;
}

/// The event as what its kind says that it is.
template<typename T>
const T& as(const xcb_generic_event_t& event) {
    return reinterpret_cast<const T&>(event); // NOLINT: that is how libxcb hands out events
}

} // namespace tavik
