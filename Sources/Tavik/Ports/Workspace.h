#pragma once

#include "Base/ScreenGeometry.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavik {

/// An application as one of its windows shows it: mostly the one that has the keyboard.
struct FrontApplication {
    /// Its name in the user's language.
    std::optional<std::string> localizedName;
    /// Its identifier on this desktop, such as "org.xfce.mousepad" or "firefox-esr".
    std::optional<std::string> bundleIdentifier;
    /// 0 when its window does not tell.
    std::int64_t processIdentifier = 0;
    /// The title of its window; empty when it has none.
    std::string windowTitle;
    /// Its window, from the top left of the desktop: what it draws itself, and with the frame
    /// around it.
    ScreenRect contents;
    ScreenRect frame;
    /// The window system's own number for it.
    std::uint32_t window = 0;
};

/// What the desktop knows of its windows and screens. Safe from any thread; waits for the window
/// system a second at most.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Nothing when no window has the keyboard or the desktop does not tell.
    virtual std::optional<FrontApplication> frontApplication() = 0;

    /// Every application that has a window, with its uppermost one; the uppermost application
    /// first.
    virtual std::vector<FrontApplication> applications() = 0;

    /// The screens, from the top left of the desktop, the primary one first. Empty when the desktop
    /// does not tell.
    virtual std::vector<ScreenRect> screens() = 0;
};

} // namespace tavik
