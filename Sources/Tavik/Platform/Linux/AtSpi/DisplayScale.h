#pragma once

#include "Base/ScreenGeometry.h"
#include "Ports/Workspace.h"

#include <optional>

namespace tavik {

/// How an application's own coordinates become physical pixels. Some toolkits tell places in the
/// units in which they lay out, which a scaled desktop makes larger.
class DisplayScale {
public:
    /// Places are pixels.
    DisplayScale() = default;

    /// Found by comparing the window of `front` with `described`, the place at which the
    /// application says it is.
    DisplayScale(const FrontApplication& front, const ScreenRect& described);

    ScreenRect pixels(const ScreenRect& rect) const;

private:
    double scale = 1;
    double shiftX = 0;
    double shiftY = 0;
};

/// Whether some of `rect` lies in the window of `front`, or next to it.
bool standsInWindow(const ScreenRect& rect, const FrontApplication& front);

} // namespace tavik
