#pragma once

#include "Capture/CaptureCandidate.h"
#include "Capture/ScreenAnchor.h"
#include "Ports/Accessibility.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// What is selected in the page around `element`, by its text markers.
std::optional<CaptureCandidate> fromTextMarkers(const ElementRef& element, ScreenAnchor& anchor);

/// The sentence around the `key` that stands at `marker` in a page, which `element` is asked about.
/// The key has no white space at its ends.
std::optional<std::string> markerSentence(const ElementRef& element, const TextMarker& marker,
                                          std::u16string_view key);

} // namespace tavik
