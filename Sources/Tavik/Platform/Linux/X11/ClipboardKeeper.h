#pragma once

#include "Platform/Linux/X11/SelectionContents.h"

namespace tavik {

/// Starts a process that takes CLIPBOARD from a window that owns it since `time`, unless somebody
/// else has taken it, and hands out `contents` until somebody does. It has none of our files and
/// connections. Returns at once; whether there is such a process.
bool startClipboardKeeper(const SelectionContentsRef& contents, xcb_window_t owner,
                          xcb_timestamp_t time);

} // namespace tavik
