#include "Capture/FocusedElement.h"

#include "Capture/Attribute.h"
#include "Capture/TreeWalk.h"
#include "Text/Unicode.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tavik {
namespace {

/// How the identifiers of browsers of the Chromium family begin, in lower case: first those of
/// desktops that name applications by domain, then the classes of their windows under X.
constexpr std::array<std::string_view, 12> chromiumPrefixes{
    "com.google.chrome",   "com.microsoft.edgemac",   "com.brave.browser", "company.thebrowser.",
    "com.vivaldi.vivaldi", "com.operasoftware.opera", "google-chrome",     "chromium",
    "microsoft-edge",      "brave-browser",           "vivaldi",           "opera"};

constexpr WalkLimits webAreaSearch{40, 300, 4000};

ElementRef firstWebArea(const ElementRef& window) {
    ElementRef webArea;
    walkBelow(window, webAreaSearch, [&](const ElementRef& visited) {
        if (attribute(visited, &AccessibleElement::role) != AccessibleRole::webArea)
            return Step::below;
        webArea = visited;
        return Step::stop;
    });
    return webArea;
}

} // namespace

bool isOfChromiumFamily(const std::string& bundleID) {
    const std::string identifier = lowercased(bundleID);
    return std::ranges::any_of(
        chromiumPrefixes, [&](std::string_view prefix) { return identifier.starts_with(prefix); });
}

void enableAccessibility(const AccessibilitySession& session, const ElementRef& application,
                         const std::optional<std::string>& bundleID,
                         const std::function<void(const std::string&)>& onStartOptionNeeded) {
    // One that was started before accessibility was switched on tells nothing of itself at all.
    const auto describesPages =
        application == nullptr ? std::optional(false)
                               : attribute(application, &AccessibleElement::setManualAccessibility);
    if (describesPages.value_or(true)) return;
    if (bundleID && !session.hasTimedOut() && isOfChromiumFamily(*bundleID))
        onStartOptionNeeded(*bundleID);
}

ElementRef focusedElement(AccessibilitySession& session, const ElementRef& application) {
    const ElementRef desktop = attribute(&session, &AccessibilitySession::systemWideElement);
    attribute(desktop, &AccessibleElement::setMessagingTimeout, messagingTimeout);
    if (auto focused = attribute(desktop, &AccessibleElement::focusedUIElement)) return focused;
    if (auto focused = attribute(application, &AccessibleElement::focusedUIElement)) return focused;
    return firstWebArea(attribute(application, &AccessibleElement::focusedWindow));
}

} // namespace tavik
