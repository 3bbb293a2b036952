#pragma once

#include <string_view>
#include <vector>

namespace tavik {

/// What the program was started for.
enum class RunMode {
    normal,
    /// Pictures of every window, with sample data.
    snapshot,
    /// A report on how well text can be read from the applications that run.
    captureProbe,
    help,
    version,
};

/// The mode that the arguments ask for; each counts as a whole only.
RunMode runMode(const std::vector<std::string_view>& arguments);

/// Whether a mode must leave the user's data and preferences alone.
bool isDiagnostic(RunMode mode);

} // namespace tavik
