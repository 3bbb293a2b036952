#pragma once

#include "Ports/Processes.h"

namespace tavik {

/// What /proc tells.
class ProcProcesses final : public Processes {
public:
    bool mayHoldTerminal(std::int64_t processIdentifier) override;
    bool isStopped(std::int64_t processIdentifier) override;
    std::vector<std::string> arguments(std::int64_t processIdentifier) override;
    std::optional<Date> startTime(std::int64_t processIdentifier) override;
};

} // namespace tavik
