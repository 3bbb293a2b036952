#pragma once

#include "Platform/Linux/DBus/BusConnection.h"
#include "Ports/MainQueue.h"
#include "Ports/Notifier.h"

#include <memory>

namespace tavik {

/// Shows notifications by the desktop's notification service, which the bus starts where it is
/// installed. Texts appear as they are written, also where the service understands markup. A
/// service without buttons shows notifications that can only be read.
///
/// For the main thread, which never waits here. The queue must outlive the bus thread.
class DesktopNotifier final : public Notifier {
public:
    DesktopNotifier(const std::shared_ptr<BusConnection>& session, MainQueue& queue);
    ~DesktopNotifier() override;
    DesktopNotifier(const DesktopNotifier&) = delete;
    DesktopNotifier& operator=(const DesktopNotifier&) = delete;

    void notify(const Notification& notification) override;
    void authorizationStatus(std::function<void(AuthorizationStatus)> done) override;
    void setOnResponse(std::function<void(const std::string& identifier)> handler) override;

private:
    struct Handlers;
    class Sender;

    std::shared_ptr<BusConnection> session;
    std::shared_ptr<Handlers> handlers;
    std::shared_ptr<Sender> sender;
};

} // namespace tavik
