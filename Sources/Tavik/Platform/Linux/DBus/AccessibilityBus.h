#pragma once

#include "Platform/Linux/DBus/BusConnection.h"
#include "Ports/AccessibilityTrust.h"
#include "Ports/MainQueue.h"

#include <memory>

namespace tavik {

/// Other applications let their text be read when the session's accessibility bus can be reached
/// and its switch is on. `state` is known a second after this was made at the latest, as
/// `notTrusted` where nobody answers, and follows the bus and its switch from then on.
///
/// For the main thread, which never waits here. The queue must outlive the bus thread.
class AccessibilityBus final : public AccessibilityTrust {
public:
    AccessibilityBus(const std::shared_ptr<BusConnection>& session, MainQueue& queue);
    ~AccessibilityBus() override;
    AccessibilityBus(const AccessibilityBus&) = delete;
    AccessibilityBus& operator=(const AccessibilityBus&) = delete;

    const Published<State>& state() const override;
    void enable() override;
    void restore(std::function<void()> done) override;

private:
    class Inquiry;

    MainQueue& queue;
    std::shared_ptr<Published<State>> current;
    std::shared_ptr<Inquiry> inquiry;
};

} // namespace tavik
