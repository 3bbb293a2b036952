#pragma once

#include "Platform/Linux/DBus/BusConnection.h"
#include "Ports/MainQueue.h"
#include "Ports/WakeSignal.h"

#include <memory>

namespace tavik {

/// Follows the machine's login service, which tells of sleep and wake; where there is none, nothing
/// is told.
///
/// For the main thread, which never waits here. The queue must outlive the bus thread.
class LogindWakeSignal final : public WakeSignal {
public:
    LogindWakeSignal(const std::shared_ptr<BusConnection>& system, MainQueue& queue);
    ~LogindWakeSignal() override;
    LogindWakeSignal(const LogindWakeSignal&) = delete;
    LogindWakeSignal& operator=(const LogindWakeSignal&) = delete;

    void setOnWake(std::function<void()> onWake) override;

private:
    class Watch;
    using Handler = std::function<void()>;

    std::shared_ptr<Handler> onWake;
    std::shared_ptr<Watch> watch;
};

} // namespace tavik
