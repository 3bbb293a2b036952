#pragma once

#include "Platform/Linux/X11/SelectionWindow.h"

#include <functional>

namespace tavik {

/// Whether the server lets programs press keys at all.
bool canPressKeys(xcb_connection_t* connection);

/// Presses Ctrl+C as if the user did, and returns, once the server has passed it on, whether it was
/// pressed: only if the window `active` is that, its program has the keyboard, and answers by
/// `until` when it is asked whether it is there, if it is one that answers that; and if
/// `isPermitted`, which is asked last, when no other program can do anything. Keys that the user
/// holds are let go before, and stay so: to press them again would leave them pressed, should he
/// let go meanwhile.
bool pressCopyKeys(const SelectionWindow& window, xcb_window_t active,
                   const std::function<bool()>& isPermitted,
                   SelectionWindow::Clock::time_point until);

} // namespace tavik
