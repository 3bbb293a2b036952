#pragma once

#include <string>
#include <vector>

namespace tavik::test {

/// What a person at a terminal does: wait until the screen says something, then press keys.
struct TerminalStep {
    std::string awaited;
    std::string keys;
};

struct TerminalResult {
    int exitCode = -1;
    std::string screen;
    /// Whether the terminal had its settings of before when the program had ended.
    bool isRestored = false;
};

/// Runs a program in a terminal of its own. It is killed when it does not end in
/// ten seconds after the last step.
TerminalResult runInTerminal(std::vector<std::string> command,
                             const std::vector<TerminalStep>& steps);

} // namespace tavik::test
