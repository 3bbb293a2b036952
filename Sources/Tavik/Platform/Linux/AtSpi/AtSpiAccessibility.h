#pragma once

#include "Platform/Linux/AtSpi/AtSpiConnection.h"
#include "Platform/Linux/AtSpi/AtSpiSession.h"
#include "Ports/Accessibility.h"

namespace tavik {

/// Applications as they describe themselves on the accessibility bus.
class AtSpiAccessibility final : public Accessibility {
public:
    std::unique_ptr<AccessibilitySession> startSession(const std::optional<FrontApplication>& front,
                                                       std::chrono::milliseconds limit) override;

private:
    AtSpiConnection connection;
    AtSpiAcquaintances acquaintances;
};

} // namespace tavik
