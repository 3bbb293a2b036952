#pragma once

#include "Base/ScreenGeometry.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tavik {

/// What a panel keeps free along one edge of the whole desktop, in physical pixels.
struct EdgeStrut {
    std::uint32_t depth = 0;
    /// The first and the last pixel along the edge.
    std::uint32_t first = 0;
    std::uint32_t last = 0;
};

/// What a panel keeps free.
struct Strut {
    EdgeStrut left;
    EdgeStrut right;
    EdgeStrut top;
    EdgeStrut bottom;
};

/// From the numbers of _NET_WM_STRUT_PARTIAL (twelve) or _NET_WM_STRUT (four); nothing when there
/// are others, or all are free of depth.
std::optional<Strut> strutOf(const std::vector<std::uint32_t>& numbers);

/// From numbers in fours: left, top, width and height.
std::vector<ScreenRect> areasOf(const std::vector<std::uint32_t>& numbers);

/// A monitor without what panels keep free. A panel that would take more than half of the monitor
/// in one direction stands on another one, or makes no sense, and takes nothing.
ScreenRect withoutStruts(const ScreenRect& monitor, const std::vector<Strut>& struts,
                         const ScreenRect& desktop);

/// The part of a monitor that lies in the one of the areas that is meant for it; all of it, where
/// none leaves half of the monitor in both directions.
ScreenRect withinArea(const ScreenRect& monitor, const std::vector<ScreenRect>& areas);

} // namespace tavik
