#pragma once

#include "Base/ScreenGeometry.h"
#include "Vocabulary/VocabularyRecords.h"

#include <optional>
#include <string>

namespace tavik {

/// Which reader produced a text; `manual` is the user at the keyboard.
enum class CaptureMethod { axMarker, axText, clipboard, manual };

/// "ax-marker", "ax-text", "clipboard" or "manual".
const char* text(CaptureMethod method);

/// What the user has selected, and where.
struct CaptureResult {
    /// Exactly as read, not trimmed.
    std::string text;
    /// The sentence in which the selection stands, at most 400 characters; absent when none was
    /// found.
    std::optional<std::string> sentence = std::nullopt;
    SourceInfo source;
    /// The selection's bounds in physical pixels. The origin of y is the lower edge of the primary
    /// screen, and it grows upwards; absent when unknown.
    std::optional<ScreenRect> anchor = std::nullopt;
    CaptureMethod method = CaptureMethod::axText;

    bool operator==(const CaptureResult&) const = default;
};

} // namespace tavik
