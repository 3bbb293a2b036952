#pragma once

#include "Platform/Linux/DBus/BusConnection.h"
#include "Ports/MainQueue.h"
#include "Ports/TrayHost.h"

#include <memory>

namespace tavik {

/// A panel that takes icons over D-Bus. Present once the session's watcher of such icons has said
/// that there is one, absent without a watcher or a bus, and unknown while a watcher or the bus
/// owes the answer: who asks about icons there, as toolkits do, would wait for it.
///
/// For the main thread, which never waits here. The queue must outlive the bus thread.
class StatusNotifierHost final : public TrayHost {
public:
    StatusNotifierHost(const std::shared_ptr<BusConnection>& session, MainQueue& queue);
    ~StatusNotifierHost() override;
    StatusNotifierHost(const StatusNotifierHost&) = delete;
    StatusNotifierHost& operator=(const StatusNotifierHost&) = delete;

    const Published<Presence>& presence() const override;

private:
    class Watch;

    std::shared_ptr<Published<Presence>> current;
    std::shared_ptr<Watch> watch;
};

} // namespace tavik
