#pragma once

#include "Environment/AppEnvironment.h"
#include "Shell/CaptureProbeReport.h"

#include <optional>

namespace tavik {

/// Probes the running applications while the application's event loop runs, and returns what came
/// out of it; nothing when the program was asked to end before. Accessibility is switched on for as
/// long as that takes, if it was off. Throws when the system has no thread or memory left. On the
/// main thread, instead of any other event loop.
std::optional<CaptureProbeReport> runCaptureProbe(const EnvironmentPorts& ports);

} // namespace tavik
