#pragma once

#include "Platform/Linux/DBus/BusConnection.h"
#include "Ports/Notifier.h"

#include <memory>

namespace tavik {

/// Shows notifications by the desktop's notification service, which the bus starts where it is
/// installed. Texts appear as they are written, also where the service understands markup.
///
/// For the main thread, which never waits here.
class DesktopNotifier final : public Notifier {
public:
    explicit DesktopNotifier(const std::shared_ptr<BusConnection>& session);
    ~DesktopNotifier() override;
    DesktopNotifier(const DesktopNotifier&) = delete;
    DesktopNotifier& operator=(const DesktopNotifier&) = delete;

    void notify(const std::string& title, const std::string& body) override;

private:
    class Sender;

    std::shared_ptr<BusConnection> session;
    std::shared_ptr<Sender> sender;
};

} // namespace tavik
