#pragma once

#include "Base/Published.h"

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
};

} // namespace tavik
