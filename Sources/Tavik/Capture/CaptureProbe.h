#pragma once

#include "Base/Date.h"
#include "Capture/ProbeRecords.h"
#include "Ports/Accessibility.h"
#include "Ports/Pasteboard.h"
#include "Ports/Processes.h"
#include "Ports/Workspace.h"

#include <optional>
#include <stop_token>
#include <vector>

namespace tavik {

/// What a probe asks of the outside world; all of it must outlive the probe.
struct ProbePorts {
    Accessibility& accessibility;
    Workspace& workspace;
    Pasteboard& pasteboard;
    Processes& processes;
    /// Whether applications let their text be read at all; where not, none is asked for it.
    bool isTrusted = true;
    /// When they began to, if that was for this probe: who was started before may not know.
    std::optional<Date> trustedSince = std::nullopt;
};

/// Finds out how well each running application can be read, wherever its windows are.
class CaptureProbe {
public:
    explicit CaptureProbe(ProbePorts ports) : ports(ports) {}

    /// One record for each application that has a window, but for this process, the uppermost
    /// first. Presses no key, changes neither the clipboard nor what is in front. Several are asked
    /// at a time, each for two seconds at most and all for twenty; those that are left then, or
    /// when it is to stop, have the advice `notAsked`. Waits for other programs: not for the main
    /// thread.
    std::vector<ProbeRecord> run(const std::stop_token& stop = {}) const;

private:
    ProbePorts ports;
};

} // namespace tavik
