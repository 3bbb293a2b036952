#pragma once

#include "Base/ScreenGeometry.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace tavik {

struct PopupSize {
    double width = 0;
    double height = 0;
};

/// Where the popup stands. All lengths are in one unit, in which the margins are points; y grows
/// upwards.
namespace PopupPlacement {

/// Free space to the edges of the screen's visible frame.
inline constexpr double margin = 8;

/// The first screen that contains the point; else the first of all, which is the main screen.
/// Nothing when there is none.
std::optional<std::size_t> screenAt(const std::vector<ScreenRect>& frames, ScreenPoint point);

/// Just below the anchor, or above it where there is no room below; without an anchor, by the
/// mouse. Where the popup is larger than `visible`, its top and right edges are kept in view.
ScreenRect place(PopupSize size, const std::optional<ScreenRect>& anchor, ScreenPoint mouse,
                 const ScreenRect& visible);

/// A popup at `present` with a new size: its top and left edges stay unless it would hang out
/// below.
ScreenRect refit(const ScreenRect& present, PopupSize size, const ScreenRect& visible);

} // namespace PopupPlacement

} // namespace tavik
