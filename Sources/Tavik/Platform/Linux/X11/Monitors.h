#pragma once

#include "Base/ScreenGeometry.h"

#include <xcb/xcb.h>

#include <vector>

namespace tavik {

/// The monitors, from the top left of the desktop, the primary one first; the whole desktop where
/// the server does not tell of any. Empty only where it does not answer.
std::vector<ScreenRect> monitorsOf(xcb_connection_t* connection, xcb_window_t root);

} // namespace tavik
