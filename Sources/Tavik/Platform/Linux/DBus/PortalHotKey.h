#pragma once

#include "Platform/Linux/DBus/BusConnection.h"
#include "Ports/HotKeyRegistrar.h"
#include "Ports/MainQueue.h"

#include <memory>
#include <string>

namespace tavik {

/// Has the desktop's portal watch for the hot key, for desktops where no program may do so itself.
/// The user is asked by the portal, as late as he likes, and may choose other keys there: so
/// nothing is registered at once. The combination is asked for again when the portal was away,
/// unless the user declined it.
///
/// Has a connection of its own, for a portal must be told who we are before anything else is asked
/// on it. For the main thread, which never waits here. The queue must outlive the bus thread.
class PortalHotKey final : public HotKeyRegistrar {
public:
    PortalHotKey(BusThread& thread, const std::string& sessionBusAddress, MainQueue& queue);
    ~PortalHotKey() override;
    PortalHotKey(const PortalHotKey&) = delete;
    PortalHotKey& operator=(const PortalHotKey&) = delete;

    bool registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers) override;
    void unregisterHotKey() override;
    const Published<bool>& isRegistered() const override;
    const Published<bool>& isAsking() const override;
    void setOnPress(std::function<void()> onPress) override;

private:
    class Client;
    struct Front;

    std::shared_ptr<Front> front;
    std::shared_ptr<BusConnection> session;
    std::shared_ptr<Client> client;
};

} // namespace tavik
