#include "Platform/Linux/X11/X11Mouse.h"

#include "Platform/Linux/X11/DisplayThread.h"
#include "Platform/Linux/X11/InputExtension.h"
#include "Platform/Linux/X11/SelectionWindow.h"
#include "Ports/MainQueue.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace tavik {
namespace {

constexpr std::uint32_t leftButton = 1;
constexpr std::uint32_t rightButton = 3;

} // namespace

/// Hears of presses on the display's thread. The thread may be left behind, and then must find
/// nobody any more to tell of them.
class X11Mouse::PressListener final : public DisplayListener {
public:
    /// Of the moment in which the press came, by the number of the observation that was the last.
    using Report = std::function<void(ScreenPoint where, std::int64_t newest)>;

    PressListener(MainQueue& queue, Report report) : queue(&queue), report(std::move(report)) {}

    void listenFor(const OpenDisplay& on, std::int64_t observation) {
        newest = observation;
        if (display) return;
        opcode = inputExtension(on.connection);
        if (opcode == 0) return;
        display = on;
        selectRawEvents(on.connection, on.root, XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS);
    }

    void stop() {
        if (display) selectRawEvents(display->connection, display->root, 0);
        display.reset();
    }

    /// From any thread: nothing is told any more.
    void silence() {
        const std::lock_guard guard(lock);
        queue = nullptr;
    }

    void handle(const xcb_generic_event_t& event) override {
        if (!display || kindOf(event) != XCB_GE_GENERIC) return;
        const auto& generic = as<xcb_ge_generic_event_t>(event);
        if (generic.extension != opcode || generic.event_type != XCB_INPUT_RAW_BUTTON_PRESS) return;
        const auto button = as<xcb_input_raw_button_press_event_t>(event).detail;
        if (button == leftButton || button == rightButton) tell();
    }

    void disconnected() override { display.reset(); }

    std::optional<Moment> nextMoment() const override { return std::nullopt; }

    void momentHasCome() override {}

private:
    void tell() {
        const auto request = xcb_query_pointer(display->connection, display->root);
        const XCBReply<xcb_query_pointer_reply_t> reply(
            xcb_query_pointer_reply(display->connection, request, nullptr));
        if (!reply) return;
        const ScreenPoint where{static_cast<double>(reply->root_x),
                                static_cast<double>(reply->root_y)};
        const std::lock_guard guard(lock);
        if (queue != nullptr)
            queue->post([report = report, where, newest = newest] { report(where, newest); });
    }

    // The thread's own.
    std::optional<OpenDisplay> display;
    std::uint8_t opcode = 0;
    std::int64_t newest = 0;
    // Of all threads.
    std::mutex lock;
    MainQueue* queue;
    const Report report;
};

/// For the main thread. Those who observe keep each other from nothing, and may outlive it.
class X11Mouse::Observers final : public std::enable_shared_from_this<Observers> {
public:
    static std::shared_ptr<Observers> on(MainQueue& queue) {
        auto made = std::make_shared<Observers>();
        const std::weak_ptr<Observers> weak = made;
        made->listener =
            std::make_shared<PressListener>(queue, [weak](ScreenPoint where, std::int64_t newest) {
                if (const auto observers = weak.lock()) observers->tell(where, newest);
            });
        made->display.emplace(made->listener);
        return made;
    }

    Observers() = default;

    ~Observers() {
        if (listener) listener->silence();
    }

    Observers(const Observers&) = delete;
    Observers& operator=(const Observers&) = delete;

    Subscription add(PressHandler handler) {
        auto added = std::make_shared<Observer>(std::move(handler), ++count, weak_from_this());
        all.push_back(added);
        display->post([listener = listener, number = count](const OpenDisplay& on) {
            listener->listenFor(on, number);
        });
        return Subscription(std::move(added));
    }

private:
    struct Observer {
        Observer(PressHandler handler, std::int64_t number, std::weak_ptr<Observers> all)
            : handler(std::move(handler)), number(number), all(std::move(all)) {}

        ~Observer() {
            if (const auto others = all.lock()) others->forgetEnded();
        }

        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;

        PressHandler handler;
        std::int64_t number;
        std::weak_ptr<Observers> all;
    };

    void forgetEnded() {
        std::erase_if(all, [](const auto& observer) { return observer.expired(); });
        if (all.empty())
            display->post([listener = listener](const OpenDisplay&) { listener->stop(); });
    }

    /// Who has come since the press has nothing to do with it.
    void tell(ScreenPoint where, std::int64_t newest) const {
        const auto allNow = all;
        for (const auto& weak : allNow)
            if (const auto observer = weak.lock(); observer && observer->number <= newest)
                observer->handler(where);
    }

    std::int64_t count = 0;
    std::vector<std::weak_ptr<Observer>> all;
    std::shared_ptr<PressListener> listener;
    std::optional<DisplayThread> display;
};

X11Mouse::X11Mouse(MainQueue& queue) : observers(Observers::on(queue)) {}

X11Mouse::~X11Mouse() = default;

Subscription X11Mouse::observePresses(PressHandler handler) {
    return observers->add(std::move(handler));
}

} // namespace tavik
