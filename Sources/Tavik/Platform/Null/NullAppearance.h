#pragma once

#include "Ports/Appearance.h"

namespace tavik {

/// Where nobody tells how windows should look.
class NullAppearance final : public Appearance {
public:
    const Published<bool>& prefersDark() const override { return never; }

private:
    Published<bool> never{false};
};

} // namespace tavik
