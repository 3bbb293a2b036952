#pragma once

#include "Ports/Timers.h"

#include <memory>

namespace tavik {

/// The timers of a program that runs a Qt event loop, to the millisecond. To be made and destroyed
/// on the main thread, once the application object exists.
class QtTimers final : public Timers {
public:
    QtTimers();
    ~QtTimers() override;
    QtTimers(const QtTimers&) = delete;
    QtTimers& operator=(const QtTimers&) = delete;

    Subscription after(std::chrono::duration<double> delay, std::function<void()> task) override;

private:
    class Clock;

    std::shared_ptr<Clock> clock;
};

} // namespace tavik
