#pragma once

#include "Ports/Accessibility.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace tavik {

/// How long an application may take to answer, for a capture that the user waits for.
inline constexpr std::chrono::milliseconds messagingTimeout{500};

/// Whether an application with this identifier describes its pages only after a start with
/// "--force-renderer-accessibility".
bool isOfChromiumFamily(const std::string& bundleID);

/// Asks an application, which may be null, to describe its pages. Where it does not do so although
/// it answers, and is of a family that needs a start option for that, `onStartOptionNeeded` is
/// called with `bundleID`.
void enableAccessibility(const AccessibilitySession& session, const ElementRef& application,
                         const std::optional<std::string>& bundleID,
                         const std::function<void(const std::string&)>& onStartOptionNeeded);

/// What has the keyboard on the desktop, or else in `application`, which may be null, or else the
/// page in its window. Null when nobody tells.
ElementRef focusedElement(AccessibilitySession& session, const ElementRef& application);

} // namespace tavik
