#pragma once

#include "Ports/TrayHost.h"

#include <memory>

namespace tavik {

/// A panel that takes icons as windows of an X server, on the default screen of $DISPLAY. Without
/// an X server, or once its connection is lost, none is present.
///
/// For the main thread, with a Qt event loop.
class XEmbedTrayHost final : public TrayHost {
public:
    XEmbedTrayHost();
    ~XEmbedTrayHost() override;
    XEmbedTrayHost(const XEmbedTrayHost&) = delete;
    XEmbedTrayHost& operator=(const XEmbedTrayHost&) = delete;

    const Published<Presence>& presence() const override;

private:
    class Watch;

    Published<Presence> current{Presence::absent};
    std::unique_ptr<Watch> watch;
};

} // namespace tavik
