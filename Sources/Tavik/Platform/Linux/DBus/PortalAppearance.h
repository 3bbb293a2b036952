#pragma once

#include "Platform/Linux/DBus/BusConnection.h"
#include "Ports/Appearance.h"
#include "Ports/MainQueue.h"

#include <memory>

namespace tavik {

/// Follows what the desktop's portal tells of its colours; the bus may start the portal for that,
/// once. Light until it has told, and as it told last while it is away.
///
/// For the main thread, which never waits here. The queue must outlive the bus thread.
class PortalAppearance final : public Appearance {
public:
    PortalAppearance(const std::shared_ptr<BusConnection>& session, MainQueue& queue);
    ~PortalAppearance() override;
    PortalAppearance(const PortalAppearance&) = delete;
    PortalAppearance& operator=(const PortalAppearance&) = delete;

    const Published<bool>& prefersDark() const override;

private:
    class Watch;

    std::shared_ptr<Published<bool>> current;
    std::shared_ptr<Watch> watch;
};

} // namespace tavik
