#pragma once

#include <functional>

namespace tavik {

/// Brings work to the main thread.
class MainQueue {
public:
    using Task = std::function<void()>;

    virtual ~MainQueue() = default;

    /// Any thread may call. Tasks run on the main thread in their order, never within this call,
    /// and are dropped when the program ends first.
    virtual void post(Task task) = 0;
};

} // namespace tavik
