#pragma once

#include "Base/Published.h"

#include <functional>

namespace tavik {

/// Whether other applications let their text be read.
class AccessibilityTrust {
public:
    enum class State {
        /// Not yet asked.
        unknown,
        trusted,
        notTrusted,
    };

    virtual ~AccessibilityTrust() = default;

    /// The last known state; asking costs nothing. For the main thread.
    virtual const Published<State>& state() const = 0;

    /// Switches accessibility on for this session; `state` tells later whether that worked.
    virtual void enable() = 0;

    /// Takes back what `enable` changed, if it is still so: never switches off what was on before.
    /// `done` is called on the main thread when that has been answered, or never where nobody
    /// answers.
    virtual void restore(std::function<void()> done) = 0;
};

} // namespace tavik
