#pragma once

#include <functional>

namespace tavik {

/// Keeps a second copy of the program from running over the same data.
class SingleInstance {
public:
    virtual ~SingleInstance() = default;

    /// Makes this process the one for its data until it ends. False when there is one already.
    virtual bool claim() = 0;

    /// Asks the running process to show itself. False when it does not answer within a second.
    virtual bool showRunning() = 0;

    /// What this process does when a later one asks it to show itself; on the main thread.
    virtual void setOnShow(std::function<void()> onShow) = 0;
};

} // namespace tavik
