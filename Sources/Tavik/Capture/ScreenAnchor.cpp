#include "Capture/ScreenAnchor.h"

#include "Capture/Attribute.h"

#include <cmath>

namespace tavik {

std::optional<ScreenRect> ScreenAnchor::from(const std::optional<ScreenRect>& rect) {
    if (!rect || !(rect->width >= 0) || !(rect->height > 0)) return std::nullopt;
    if (!screens) screens = attribute(workspace, &Workspace::screens);
    if (screens->empty()) return std::nullopt;
    const ScreenRect& primary = screens->front();
    const ScreenRect anchor = turnedOver(*rect, primary.y + primary.height);
    for (const double value : {anchor.x, anchor.y, anchor.width, anchor.height})
        if (!std::isfinite(value)) return std::nullopt;
    return anchor;
}

} // namespace tavik
