#include "Platform/Linux/X11/X11HotKey.h"

#include "Platform/Linux/Keys/ClassicKeys.h"
#include "Platform/Linux/X11/HotKeyGrab.h"

#include <mutex>
#include <utility>

namespace tavik {
namespace {

using Notice = HotKeyGrab::Notice;

constexpr std::chrono::milliseconds answerLimit{500};
constexpr std::uint32_t knownModifiers = 0x1b00;

} // namespace

/// The way to the main thread, until it is closed: the display's thread may outlive the queue.
class X11HotKey::Outlet {
public:
    explicit Outlet(MainQueue& queue) : queue(&queue) {}

    void post(MainQueue::Task task) {
        const std::lock_guard guard(lock);
        if (queue != nullptr) queue->post(std::move(task));
    }

    void close() {
        const std::lock_guard guard(lock);
        queue = nullptr;
    }

private:
    std::mutex lock;
    MainQueue* queue;
};

/// What the main thread knows.
class X11HotKey::Registration {
public:
    explicit Registration(const std::shared_ptr<HotKeyGrab>& grab) : grab(grab), display(grab) {}

    bool take(std::uint32_t keyCode, std::uint32_t modifiers) {
        const ClassicKey* key = classicKey(keyCode);
        if (key == nullptr || (modifiers & knownModifiers) == 0) {
            release();
            return false;
        }
        wish = {++lastNumber, key->keysym, key->evdevKey, modifiers};
        ask();
        const auto answer = display.ask<bool>(
            [grab = grab](const OpenDisplay&) { return grab->isHeld(); }, answerLimit);
        const bool isHeld = answer.value_or(false);
        publish(isHeld);
        return isHeld;
    }

    void release() {
        ++lastNumber;
        display.post([grab = grab](const OpenDisplay& on) { grab->release(on); });
        publish(false);
    }

    void hear(std::int64_t number, Notice notice) {
        if (number != lastNumber) return;
        if (notice == Notice::pressed) {
            const auto action = onPress;
            if (action) action();
            return;
        }
        publish(notice == Notice::held);
        if (notice == Notice::lost) ask();
    }

    /// Nothing that is on its way is heard any more.
    void end() { ++lastNumber; }

    const Published<bool>& isRegistered() const { return registered; }

    void setOnPress(std::function<void()> handler) { onPress = std::move(handler); }

private:
    void ask() {
        display.post([grab = grab, wish = wish](const OpenDisplay& on) { grab->take(on, wish); });
    }

    void publish(bool isHeld) {
        if (registered.value() != isHeld) registered.set(isHeld);
    }

    Published<bool> registered{false};
    std::function<void()> onPress;
    std::int64_t lastNumber = 0;
    HotKeyGrab::Wish wish{};
    const std::shared_ptr<HotKeyGrab> grab;
    DisplayThread display;
};

X11HotKey::X11HotKey(MainQueue& queue) : outlet(std::make_shared<Outlet>(queue)) {
    const auto heir = std::make_shared<std::weak_ptr<Registration>>();
    const auto grab =
        std::make_shared<HotKeyGrab>([outlet = outlet, heir](std::int64_t number, Notice notice) {
            outlet->post([heir, number, notice] {
                if (const auto registration = heir->lock()) registration->hear(number, notice);
            });
        });
    registration = std::make_shared<Registration>(grab);
    *heir = registration;
}

X11HotKey::~X11HotKey() {
    outlet->close();
    registration->end();
}

bool X11HotKey::registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers) {
    return registration->take(keyCode, modifiers);
}

void X11HotKey::unregisterHotKey() {
    registration->release();
}

const Published<bool>& X11HotKey::isRegistered() const {
    return registration->isRegistered();
}

void X11HotKey::setOnPress(std::function<void()> onPress) {
    registration->setOnPress(std::move(onPress));
}

} // namespace tavik
