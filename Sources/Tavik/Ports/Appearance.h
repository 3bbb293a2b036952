#pragma once

#include "Base/Published.h"

namespace tavik {

/// How the desktop wants its programs to look. For the main thread.
class Appearance {
public:
    virtual ~Appearance() = default;

    /// Whether it prefers dark windows; false where it does not tell.
    virtual const Published<bool>& prefersDark() const = 0;
};

} // namespace tavik
