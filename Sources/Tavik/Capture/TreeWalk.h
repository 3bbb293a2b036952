#pragma once

#include "Ports/Accessibility.h"

#include <cstddef>
#include <functional>
#include <limits>

namespace tavik {

/// Where a walk goes from an element.
enum class Step { below, past, stop };

/// How far a walk goes. Trees of other programs may be endless, or lead back to themselves.
struct WalkLimits {
    /// Levels below the root.
    int levels = 0;
    /// The first children of each element.
    std::size_t children = 0;
    std::size_t elements = std::numeric_limits<std::size_t>::max();
};

/// Visits what is below `root`, each element before its children and these before its sibling.
void walkBelow(const ElementRef& root, WalkLimits limits,
               const std::function<Step(const ElementRef&)>& visit);

} // namespace tavik
