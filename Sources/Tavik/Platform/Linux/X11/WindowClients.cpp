#include "Platform/Linux/X11/WindowClients.h"

#include <xcb/res.h>

namespace tavik {
namespace {

bool knowsProcesses(xcb_connection_t* connection) {
    const auto* extension = xcb_get_extension_data(connection, &xcb_res_id);
    if (extension == nullptr || extension->present == 0) return false;
    const auto request = xcb_res_query_version(connection, 1, 2);
    const XCBReply<xcb_res_query_version_reply_t> reply(
        xcb_res_query_version_reply(connection, request, nullptr));
    return reply && (reply->server_major > 1 || reply->server_minor >= 2);
}

} // namespace

std::int64_t localProcessOf(xcb_connection_t* connection, xcb_window_t window) {
    if (window == XCB_NONE || !knowsProcesses(connection)) return 0;
    const xcb_res_client_id_spec_t wanted{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto request = xcb_res_query_client_ids(connection, 1, &wanted);
    const XCBReply<xcb_res_query_client_ids_reply_t> reply(
        xcb_res_query_client_ids_reply(connection, request, nullptr));
    if (!reply) return 0;
    // Of one client one number was asked for.
    const auto ids = xcb_res_query_client_ids_ids_iterator(reply.get());
    if (ids.rem == 0 || xcb_res_client_id_value_value_length(ids.data) < 1) return 0;
    return *xcb_res_client_id_value_value(ids.data);
}

bool areOfOneProgram(xcb_connection_t* connection, xcb_window_t one, xcb_window_t other) {
    if (one == XCB_NONE || other == XCB_NONE) return false;
    // The server gives each connection numbers of its own.
    const std::uint32_t ofConnection = ~xcb_get_setup(connection)->resource_id_mask;
    if ((one & ofConnection) == (other & ofConnection)) return true;
    const std::int64_t process = localProcessOf(connection, one);
    return process != 0 && process == localProcessOf(connection, other);
}

} // namespace tavik
