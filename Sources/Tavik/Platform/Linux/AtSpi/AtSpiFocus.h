#pragma once

#include "Platform/Linux/AtSpi/AtSpiNode.h"
#include "Ports/Workspace.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tavik {

/// The application of that process; null when it tells nothing of itself. `front` helps with those
/// whose process is hidden behind a sandbox.
AtSpiNode* applicationOf(AtSpiTree& tree, std::int64_t processIdentifier,
                         const std::optional<FrontApplication>& front);

/// The window that says it is active, of all applications; none but one with the given title,
/// unless that is empty.
AtSpiNode* activeWindow(AtSpiTree& tree, const std::string& title);

/// The window of an application in which the user works.
AtSpiNode* activeWindowOf(AtSpiTree& tree, AtSpiNode& application, const std::string& title);

/// The innermost focused element of a window; null when nothing is.
AtSpiNode* focusedIn(AtSpiTree& tree, AtSpiNode& window);

} // namespace tavik
