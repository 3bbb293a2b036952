#pragma once

#include <array>

namespace tavik {

/// The sizes in which panels ask for an icon, at scales of 1 to 3, in device pixels.
inline constexpr std::array iconSizes{16, 22, 24, 32, 44, 48, 64, 72};

} // namespace tavik
