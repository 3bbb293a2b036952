#pragma once

namespace tavik {

/// A place on the desktop, in physical pixels where nothing else is said. Whoever hands one out
/// says where its origin is.
struct ScreenPoint {
    double x = 0;
    double y = 0;

    bool operator==(const ScreenPoint&) const = default;
};

/// A rectangle on the desktop, in physical pixels where nothing else is said. Whoever hands one out
/// says where its origin is.
struct ScreenRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const ScreenRect&) const = default;
};

/// Whether the point is in the rectangle, whose first edges belong to it.
inline bool contains(const ScreenRect& rect, ScreenPoint point) {
    return point.x >= rect.x && point.x < rect.x + rect.width && point.y >= rect.y
           && point.y < rect.y + rect.height;
}

/// The rectangle with its y counted the other way: downwards from the top of a desktop, or upwards
/// from the lower edge of its primary screen, which `edge` is in the first of the two.
inline ScreenRect turnedOver(const ScreenRect& rect, double edge) {
    return {rect.x, edge - (rect.y + rect.height), rect.width, rect.height};
}

} // namespace tavik
