#pragma once

#include "Capture/CaptureCandidate.h"
#include "Capture/ScreenAnchor.h"
#include "Ports/Accessibility.h"

#include <optional>

namespace tavik {

/// What is selected in `element` itself, a text field or editor.
std::optional<CaptureCandidate> fromTextAttributes(const ElementRef& element, ScreenAnchor& anchor);

/// The first element below `element` that has a selection and tells where; null when there is none.
ElementRef selectedDescendant(const ElementRef& element);

} // namespace tavik
