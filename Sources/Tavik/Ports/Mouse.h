#pragma once

#include "Base/Published.h"
#include "Base/ScreenGeometry.h"

#include <functional>

namespace tavik {

/// The mouse, over whichever program it is. For the main thread.
class Mouse {
public:
    /// Where the button went down, in physical pixels from the top left of the desktop.
    using PressHandler = std::function<void(ScreenPoint where)>;

    virtual ~Mouse() = default;

    /// Calls the handler for every press of the left or the right button, anywhere, soon after it
    /// happened, until the subscription ends. The press takes its course all the same.
    virtual Subscription observePresses(PressHandler handler) = 0;
};

} // namespace tavik
