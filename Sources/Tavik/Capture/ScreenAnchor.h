#pragma once

#include "Base/ScreenGeometry.h"
#include "Ports/Workspace.h"

#include <optional>
#include <vector>

namespace tavik {

/// Turns rectangles of the accessibility interface, which begin at the top left of the desktop,
/// over: their y then grows upwards from the lower edge of the primary screen.
class ScreenAnchor {
public:
    /// The workspace is asked for its screens at the first rectangle, and must live till then.
    explicit ScreenAnchor(Workspace& workspace) : workspace(&workspace) {}

    /// Nothing for a rectangle that is flat or makes no sense, and where there is no screen. One
    /// without width will do: it is as wide as a caret.
    std::optional<ScreenRect> from(const std::optional<ScreenRect>& rect);

private:
    Workspace* workspace;
    std::optional<std::vector<ScreenRect>> screens;
};

} // namespace tavik
