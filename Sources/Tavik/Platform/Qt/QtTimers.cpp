#include "Platform/Qt/QtTimers.h"

#include <QObject>
#include <QTimerEvent>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <utility>

namespace tavik {
namespace {

using Milliseconds = std::chrono::milliseconds;

/// What Qt's timers can take, rounded up: none is over too early.
Milliseconds countable(std::chrono::duration<double> delay) {
    constexpr std::chrono::duration<double> longest = std::chrono::hours(24 * 21);
    const auto bounded = std::clamp(delay, std::chrono::duration<double>::zero(), longest);
    return std::chrono::ceil<Milliseconds>(bounded);
}

} // namespace

class QtTimers::Clock final : public QObject {
public:
    using Key = std::uint64_t;

    Key start(Milliseconds delay, std::function<void()> task) {
        waiting[++lastKey] = {startTimer(delay, Qt::PreciseTimer), std::move(task)};
        return lastKey;
    }

    void end(Key key) {
        const auto at = waiting.find(key);
        if (at == waiting.end()) return;
        killTimer(at->second.timer);
        waiting.erase(at);
    }

protected:
    void timerEvent(QTimerEvent* event) override {
        const auto at = std::ranges::find_if(
            waiting, [&](const auto& each) { return each.second.timer == event->timerId(); });
        if (at == waiting.end()) return;
        const std::function<void()> task = std::move(at->second.task);
        end(at->first);
        task();
    }

private:
    struct Entry {
        int timer = 0;
        std::function<void()> task;
    };

    Key lastKey = 0;
    std::map<Key, Entry> waiting;
};

QtTimers::QtTimers() : clock(std::make_shared<Clock>()) {}

QtTimers::~QtTimers() = default;

Subscription QtTimers::after(std::chrono::duration<double> delay, std::function<void()> task) {
    const Clock::Key key = clock->start(countable(delay), std::move(task));
    return Subscription(std::shared_ptr<void>(nullptr, [weak = std::weak_ptr(clock), key](void*) {
        if (const auto present = weak.lock()) present->end(key);
    }));
}

} // namespace tavik
