#include "Capture/SelectionCapture.h"

#include "Capture/Attribute.h"
#include "Capture/CaptureCandidate.h"
#include "Capture/CaptureError.h"
#include "Capture/ClipboardReader.h"
#include "Capture/DocumentURL.h"
#include "Capture/FocusedElement.h"
#include "Capture/ScreenAnchor.h"
#include "Capture/TextAttributeReader.h"
#include "Capture/TextMarkerReader.h"
#include "Text/Unicode.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

// How a selection is read:
//
// 1. Without permission no application is asked for anything.
// 2. The application in front gives the source its name. Where the desktop tells of none, what the
//    desktop says is focused will do.
// 3. It is asked to describe its pages, unless it is Tavik itself.
// 4. All reading begins at the focused element. Without one, and in a password field, there is
//    nothing to read.
// 5. The address of the page or document is looked for from there upwards.
// 6. Text markers know web pages, text attributes know text fields. Each that finds a text makes a
//    candidate.
// 7. While no candidate has a sentence, the selection may be that of an element below, which
//    programs do not always call focused. Its candidate is then the first. Below a page there
//    is nothing to find: its text is that of the markers, and fields without the focus have none.
// 8. The first candidate with a sentence wins, else the first at all.
// 9. Where there is none, the clipboard is left: in a terminal the desktop's own copy of the
//    selection, elsewhere a copy made for the user and undone. Never with an application that has
//    left a question unanswered, for it would act on the keys at some later time.
//
// A reader takes a call that fails for one that has no answer. As the session fails every call once
// one has timed out or the time is up, a ladder that meets a dead program soon runs out of rungs.

namespace tavik {
namespace {

/// For all calls together.
constexpr std::chrono::milliseconds captureLimit{1500};

SourceInfo sourceOf(const std::optional<FrontApplication>& front) {
    if (!front) return {};
    return {front->localizedName, front->bundleIdentifier};
}

/// One climb of the ladder.
class Capture {
public:
    explicit Capture(const CapturePorts& ports);

    CaptureResult run();

private:
    ElementRef frontApplication();
    std::vector<CaptureCandidate> candidates();
    CaptureResult result(std::vector<CaptureCandidate> found) const;
    CaptureResult lastResort() const;
    bool isSelectionKnown() const;

    const CapturePorts& ports;
    ScreenAnchor anchor;
    std::optional<FrontApplication> front;
    SourceInfo source;
    std::unique_ptr<AccessibilitySession> session;
    ElementRef focused;
    std::optional<AccessibleRole> focusedRole;
};

Capture::Capture(const CapturePorts& ports)
    : ports(ports), anchor(ports.workspace),
      front(attribute(&ports.workspace, &Workspace::frontApplication)), source(sourceOf(front)) {
    session = attribute(&ports.accessibility, &Accessibility::startSession, front, captureLimit);
}

CaptureResult Capture::run() {
    if (session == nullptr) return lastResort();
    const ElementRef application = frontApplication();
    if (front && front->processIdentifier != getpid())
        enableAccessibility(*session, application, source.bundleID, ports.onStartOptionNeeded);
    focused = focusedElement(*session, application);
    if (focused == nullptr) return lastResort();
    focusedRole = attribute(focused, &AccessibleElement::role);
    if (focusedRole == AccessibleRole::passwordField) return lastResort();
    source.url = documentURL(focused);
    auto found = candidates();
    if (found.empty()) return lastResort();
    return result(std::move(found));
}

ElementRef Capture::frontApplication() {
    if (!front) return nullptr;
    auto application =
        attribute(session, &AccessibilitySession::applicationElement, front->processIdentifier);
    attribute(application, &AccessibleElement::setMessagingTimeout, messagingTimeout);
    return application;
}

std::vector<CaptureCandidate> Capture::candidates() {
    std::vector<CaptureCandidate> found;
    if (auto candidate = fromTextMarkers(focused, anchor)) found.push_back(*std::move(candidate));
    if (auto candidate = fromTextAttributes(focused, anchor))
        found.push_back(*std::move(candidate));
    const auto hasSentence = [](const CaptureCandidate& each) { return each.sentence.has_value(); };
    if (std::ranges::any_of(found, hasSentence)) return found;
    if (focusedRole == AccessibleRole::webArea) return found;
    if (auto candidate = fromTextAttributes(selectedDescendant(focused), anchor))
        found.insert(found.begin(), *std::move(candidate));
    return found;
}

CaptureResult Capture::result(std::vector<CaptureCandidate> found) const {
    const auto withSentence = std::ranges::find_if(
        found, [](const CaptureCandidate& each) { return each.sentence.has_value(); });
    CaptureCandidate& best = withSentence == found.end() ? found.front() : *withSentence;
    return {utf8FromUTF16(best.text), std::move(best.sentence), source, best.anchor, best.method};
}

CaptureResult Capture::lastResort() const {
    const bool isKnown = isSelectionKnown();
    const bool hasTimedOut = session != nullptr && session->hasTimedOut();
    if (front && !hasTimedOut) {
        const auto way = clipboardWay(*front, focusedRole, ports.processes);
        auto text = fromClipboard(*front, way, isKnown, ports.pasteboard);
        if (text)
            return {*std::move(text), std::nullopt, source, std::nullopt, CaptureMethod::clipboard};
    }
    throw CaptureError(CaptureError::Kind::nothingSelected, source);
}

/// Whether the focused element has a selection, though nobody could read it.
bool Capture::isSelectionKnown() const {
    if (focusedRole == AccessibleRole::passwordField) return false;
    const auto range = attribute(focused, &AccessibleElement::selectedTextRange);
    if (range && range->length > 0) return true;
    const auto markers = attribute(focused, &AccessibleElement::selectedTextMarkerRange);
    return markers && markers->range.length > 0;
}

} // namespace

SelectionCapture::SelectionCapture(CapturePorts ports) : ports(std::move(ports)) {}

CaptureResult SelectionCapture::capture() const {
    if (!ports.isTrusted())
        throw CaptureError(CaptureError::Kind::notTrusted,
                           sourceOf(attribute(&ports.workspace, &Workspace::frontApplication)));
    return Capture(ports).run();
}

} // namespace tavik
