#pragma once

#include "Capture/ProbeRecords.h"

#include <string>
#include <vector>

namespace tavik {

/// The outcome of a probe, and in what state accessibility was.
struct CaptureProbeReport {
    enum class Accessibility {
        /// It was on.
        on,
        /// It was switched on for the probe, and is off again.
        borrowed,
        /// It was switched on for the probe, and nobody answers who could switch it off.
        leftOn,
        /// It is off or cannot be reached, whatever was tried.
        unreachable,
    };

    Accessibility accessibility = Accessibility::on;
    std::vector<ProbeRecord> applications;
    double milliseconds = 0;
};

/// A table for a terminal, in Chinese. People show it to others, so it has no word of what they
/// have selected.
std::string probeTable(const CaptureProbeReport& report);

/// One JSON document with the same, and a line break.
std::string probeJSON(const CaptureProbeReport& report);

} // namespace tavik
