#pragma once

#include "Ports/Workspace.h"

namespace tavik {

/// A desktop that tells nothing.
class NullWorkspace final : public Workspace {
public:
    std::optional<FrontApplication> frontApplication() override { return std::nullopt; }

    std::vector<ScreenRect> screens() override { return {}; }
};

} // namespace tavik
