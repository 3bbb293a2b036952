#include "Platform/Linux/X11/ServerClock.h"

#include "Platform/Linux/X11/SelectionWindow.h"

#include <chrono>

namespace tavik {
namespace {

constexpr std::chrono::milliseconds longestWait{200};

} // namespace

/// Has the window whose changes tell the time. For the display's thread.
class ServerClock::Reader final : public DisplayListener {
public:
    std::optional<xcb_timestamp_t> read(const OpenDisplay& display) {
        if (!window) window.emplace(display, [](const xcb_generic_event_t&) {});
        return window->serverTime(SelectionWindow::Clock::now() + longestWait);
    }

    void handle(const xcb_generic_event_t& /*event*/) override {}

    void disconnected() override { window.reset(); }

    std::optional<Moment> nextMoment() const override { return std::nullopt; }

    void momentHasCome() override {}

private:
    std::optional<SelectionWindow> window;
};

ServerClock::ServerClock() : reader(std::make_shared<Reader>()), display(reader) {}

ServerClock::~ServerClock() = default;

std::optional<xcb_timestamp_t> ServerClock::now() {
    using Time = std::optional<xcb_timestamp_t>;
    return display
        .ask<Time>([reader = reader](const OpenDisplay& on) { return reader->read(on); },
                   longestWait)
        .value_or(std::nullopt);
}

} // namespace tavik
