#pragma once

#include "Platform/Linux/AtSpi/AtSpiCalls.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tavik::test {

/// A control that shows in a window.
struct ShownControl {
    AtSpiReference object;
    std::uint32_t role = 0;
    std::string name;
    /// Empty for what has no text of its own.
    std::string text;
    AtSpiStates states;
};

/// Someone who has a program's windows read to them, and works in them over the accessibility bus.
/// Throws `AccessibilityFailure` when the program does not answer within twenty seconds.
class ScreenReader {
public:
    explicit ScreenReader(std::int64_t processIdentifier) : process(processIdentifier) {}

    /// The window of that title and what shows in it; empty when no such window shows.
    std::vector<ShownControl> window(const std::string& title);

    /// Does the first of the things that the control offers to do; false where that fails.
    bool act(const ShownControl& control);

private:
    std::int64_t process;
    AtSpiConnection connection;
};

} // namespace tavik::test
