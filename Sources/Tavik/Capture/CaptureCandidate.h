#pragma once

#include "Capture/CaptureResult.h"

#include <optional>
#include <string>

namespace tavik {

/// What one reader found.
struct CaptureCandidate {
    /// As it was read.
    std::u16string text;
    std::optional<std::string> sentence;
    std::optional<ScreenRect> anchor;
    CaptureMethod method;
};

} // namespace tavik
