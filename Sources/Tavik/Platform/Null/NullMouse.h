#pragma once

#include "Ports/Mouse.h"

namespace tavik {

/// Where nobody tells of what is pressed in other programs.
class NullMouse final : public Mouse {
public:
    Subscription observePresses(PressHandler) override { return {}; }
};

} // namespace tavik
