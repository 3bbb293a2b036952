#pragma once

#include "Ports/WakeSignal.h"

namespace tavik {

/// Where nobody tells of sleep.
class NullWakeSignal final : public WakeSignal {
public:
    void setOnWake(std::function<void()>) override {}
};

} // namespace tavik
