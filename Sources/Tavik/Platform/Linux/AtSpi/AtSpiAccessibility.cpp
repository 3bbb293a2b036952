#include "Platform/Linux/AtSpi/AtSpiAccessibility.h"

namespace tavik {

std::unique_ptr<AccessibilitySession>
AtSpiAccessibility::startSession(const std::optional<FrontApplication>& front,
                                 std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    return std::make_unique<AtSpiSession>(connection.before(deadline), front, deadline,
                                          acquaintances);
}

} // namespace tavik
