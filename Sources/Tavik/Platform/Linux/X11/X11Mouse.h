#pragma once

#include "Ports/Mouse.h"

#include <memory>

namespace tavik {

class MainQueue;

/// The mouse of the X server that $DISPLAY names, on a connection of its own. Where the server
/// knows no raw events, no press is told.
class X11Mouse final : public Mouse {
public:
    /// Calls the observers on `queue`, which must outlive it.
    explicit X11Mouse(MainQueue& queue);
    ~X11Mouse() override;
    X11Mouse(const X11Mouse&) = delete;
    X11Mouse& operator=(const X11Mouse&) = delete;

    Subscription observePresses(PressHandler handler) override;

private:
    class PressListener;
    class Observers;

    std::shared_ptr<Observers> observers;
};

} // namespace tavik
