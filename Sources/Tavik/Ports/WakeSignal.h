#pragma once

#include <functional>

namespace tavik {

/// Tells when the machine wakes from sleep.
class WakeSignal {
public:
    virtual ~WakeSignal() = default;

    /// `onWake` is called on the main thread at each wake, where the machine tells of it.
    virtual void setOnWake(std::function<void()> onWake) = 0;
};

} // namespace tavik
