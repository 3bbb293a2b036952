#pragma once

#include "Base/Published.h"

#include <chrono>
#include <functional>

namespace tavik {

/// Calls back on the main thread after a while, in which the machine's sleep need not count.
class Timers {
public:
    virtual ~Timers() = default;

    /// Calls `task` once, never within this call, and not any more once the handle is gone, which
    /// the task itself may let go. A delay of zero or less is over at once, one of more than three
    /// weeks after three weeks.
    virtual Subscription after(std::chrono::duration<double> delay, std::function<void()> task) = 0;
};

} // namespace tavik
