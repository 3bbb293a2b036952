#pragma once

#include "Base/Date.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavik {

/// What the system knows of the programs that run. Safe from any thread; reads a few small files.
class Processes {
public:
    virtual ~Processes() = default;

    /// Whether it may hold a terminal in which other programs run: itself, also when that cannot be
    /// seen, or one that descends from it.
    virtual bool mayHoldTerminal(std::int64_t processIdentifier) = 0;

    /// Whether it has been stopped, and so answers nothing till it is told to go on.
    virtual bool isStopped(std::int64_t processIdentifier) = 0;

    /// What it was started with, its own name first; empty when that cannot be seen.
    virtual std::vector<std::string> arguments(std::int64_t processIdentifier) = 0;

    /// When it was started, to a second; nothing when that cannot be seen.
    virtual std::optional<Date> startTime(std::int64_t processIdentifier) = 0;
};

} // namespace tavik
