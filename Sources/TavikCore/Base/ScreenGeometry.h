#pragma once

namespace tavik {

/// A rectangle on the desktop, in physical pixels. Whoever hands one out says where its origin is.
struct ScreenRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const ScreenRect&) const = default;
};

} // namespace tavik
