#include "Platform/Linux/X11/InputExtension.h"

#include "Platform/Linux/X11/XCBHandles.h"

#include <xcb/xinput.h>

namespace tavik {

std::uint8_t inputExtension(xcb_connection_t* connection) {
    const auto* found = xcb_get_extension_data(connection, &xcb_input_id);
    if (found == nullptr || found->present == 0) return 0;
    const auto request = xcb_input_xi_query_version(connection, 2, 2);
    const XCBReply<xcb_input_xi_query_version_reply_t> reply(
        xcb_input_xi_query_version_reply(connection, request, nullptr));
    const bool isEnough = reply && (reply->major_version > 2 || reply->minor_version >= 2);
    return isEnough ? found->major_opcode : 0;
}

void selectRawEvents(xcb_connection_t* connection, xcb_window_t root, std::uint32_t events) {
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const chosen{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, events};

    xcb_input_xi_select_events(connection, root, 1, &chosen.head);
}

} // namespace tavik
