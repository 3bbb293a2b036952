#include "Platform/Linux/X11/Monitors.h"

#include "Platform/Linux/X11/XCBHandles.h"

#include <xcb/randr.h>

namespace tavik {
namespace {

bool hasRandR(xcb_connection_t* connection) {
    const auto* extension = xcb_get_extension_data(connection, &xcb_randr_id);
    return extension != nullptr && extension->present != 0;
}

/// Of servers that do not know of monitors, none.
std::vector<ScreenRect> activeMonitors(xcb_connection_t* connection, xcb_window_t root) {
    if (!hasRandR(connection)) return {};
    const auto request = xcb_randr_get_monitors(connection, root, 1);
    const XCBReply<xcb_randr_get_monitors_reply_t> reply(
        xcb_randr_get_monitors_reply(connection, request, nullptr));
    if (!reply) return {};
    std::vector<ScreenRect> found;
    auto monitors = xcb_randr_get_monitors_monitors_iterator(reply.get());
    for (; monitors.rem > 0; xcb_randr_monitor_info_next(&monitors)) {
        const xcb_randr_monitor_info_t& monitor = *monitors.data;
        const ScreenRect place{static_cast<double>(monitor.x), static_cast<double>(monitor.y),
                               static_cast<double>(monitor.width),
                               static_cast<double>(monitor.height)};
        if (monitor.width == 0 || monitor.height == 0) continue;
        found.insert(monitor.primary != 0 ? found.begin() : found.end(), place);
    }
    return found;
}

} // namespace

std::vector<ScreenRect> monitorsOf(xcb_connection_t* connection, xcb_window_t root) {
    auto screens = activeMonitors(connection, root);
    if (!screens.empty()) return screens;
    const XCBReply<xcb_get_geometry_reply_t> whole(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, root), nullptr));
    if (whole)
        screens.push_back(
            {0, 0, static_cast<double>(whole->width), static_cast<double>(whole->height)});
    return screens;
}

} // namespace tavik
