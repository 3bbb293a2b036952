#pragma once

#include "Ports/WindowSystem.h"

namespace tavik {

/// The window system as far as Qt knows it, where there is no X server. A monitor keeps the origin
/// that Qt gives it; from there on, pixels are physical. The keyboard goes where the window system
/// lets it go, and back by itself.
class QtWindowSystem final : public WindowSystem {
public:
    std::vector<Screen> screens() override;
    ScreenPoint pointer() override;

    bool hasCompositor() override { return true; }

    void limitClicks(std::uint32_t window, const ScreenRect& part) override;
    void takeKeyboard(std::uint32_t window) override;

    void returnKeyboard(std::uint32_t) override {}

    /// Qt has asked for it.
    void bringToFront(std::uint32_t) override {}
};

} // namespace tavik
