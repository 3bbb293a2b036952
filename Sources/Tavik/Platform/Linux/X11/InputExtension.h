#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace tavik {

/// The number of the server's input extension; 0 where that is missing or older than 2.2. Older
/// ones tell of no raw events while somebody holds a grab.
std::uint8_t inputExtension(xcb_connection_t* connection);

/// Has the connection told of these raw events of all devices in place of those before; of none
/// by 0. For servers with the extension.
void selectRawEvents(xcb_connection_t* connection, xcb_window_t root, std::uint32_t events);

} // namespace tavik
