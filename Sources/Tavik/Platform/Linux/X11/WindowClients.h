#pragma once

#include "Platform/Linux/X11/XCBHandles.h"

#include <cstdint>

namespace tavik {

/// The process on this computer that made a window; 0 when the server does not tell.
std::int64_t localProcessOf(xcb_connection_t* connection, xcb_window_t window);

/// Whether two windows are of one program: of one connection to the server, or of one process.
bool areOfOneProgram(xcb_connection_t* connection, xcb_window_t one, xcb_window_t other);

} // namespace tavik
