#include "Capture/CaptureProbe.h"

#include "Capture/Attribute.h"
#include "Capture/CaptureCandidate.h"
#include "Capture/ClipboardReader.h"
#include "Capture/FocusedElement.h"
#include "Capture/ScreenAnchor.h"
#include "Capture/SelectedText.h"
#include "Capture/TextAttributeReader.h"
#include "Capture/TextMarkerReader.h"
#include "Capture/TreeWalk.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace tavik {
namespace {

using Clock = std::chrono::steady_clock;

/// For all calls to one application.
constexpr std::chrono::milliseconds applicationLimit{1500};
constexpr std::chrono::seconds probeLimit{20};
constexpr std::size_t mostAtATime = 4;

constexpr WalkLimits windowSearch{14, 100, 800};
constexpr std::chrono::milliseconds windowSearchLimit{900};

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

ProbeRecord unasked(const FrontApplication& application) {
    ProbeRecord record;
    record.name = application.localizedName;
    record.identifier = application.bundleIdentifier;
    record.processIdentifier = application.processIdentifier;
    return record;
}

/// Looks at one application the way a capture does, but without a copy.
class Examination {
public:
    Examination(const ProbePorts& ports, const FrontApplication& application)
        : ports(ports), application(application), anchor(ports.workspace),
          record(unasked(application)) {}

    ProbeRecord run();

private:
    void askTheApplication();
    std::optional<CaptureCandidate> accessibleText();
    std::optional<CaptureCandidate> fromAttributes();
    ElementRef foundInWindow();
    void take(const CaptureCandidate& candidate);
    void lookAtSelection();
    bool tellsItsText() const;
    bool mayBeOlderThanTrust() const;
    bool hasStartOption() const;
    ProbeAdvice advice() const;

    /// What `read` returns, with a step that tells how long it took.
    template<typename Read>
    auto timed(ProbeReader reader, Read read) {
        const auto start = Clock::now();
        auto found = read();
        record.steps.push_back({reader, millisecondsSince(start), found.has_value()});
        return found;
    }

    const ProbePorts& ports;
    const FrontApplication& application;
    ScreenAnchor anchor;
    std::unique_ptr<AccessibilitySession> session;
    ElementRef element;
    ElementRef focused;
    std::optional<AccessibleRole> role;
    bool hasSearchedWindow = false;
    bool isStopped = false;
    bool needsStartOption = false;
    ClipboardWay way = ClipboardWay::none;
    ProbeRecord record;
};

ProbeRecord Examination::run() {
    const auto start = Clock::now();
    isStopped = ports.processes.isStopped(application.processIdentifier);
    if (ports.isTrusted && !isStopped) askTheApplication();
    if (record.reader == ProbeReader::none && !(session && session->hasTimedOut())) {
        way = clipboardWay(application, role, ports.processes);
        if (way != ClipboardWay::none) lookAtSelection();
    }
    record.advice = advice();
    record.milliseconds = millisecondsSince(start);
    return std::move(record);
}

void Examination::askTheApplication() {
    session = attribute(&ports.accessibility, &Accessibility::startSession,
                        std::optional(application), applicationLimit);
    element = attribute(session, &AccessibilitySession::applicationElement,
                        application.processIdentifier);
    attribute(element, &AccessibleElement::setMessagingTimeout, messagingTimeout);
    record.isOnAccessibilityBus = element != nullptr;
    record.describesPages = attribute(element, &AccessibleElement::setManualAccessibility);
    needsStartOption =
        !record.describesPages.value_or(element != nullptr) && session && !session->hasTimedOut()
        && isOfChromiumFamily(application.bundleIdentifier.value_or("")) && !hasStartOption();
    focused = attribute(element, &AccessibleElement::focusedUIElement);
    if (focused == nullptr) focused = foundInWindow();
    role = attribute(focused, &AccessibleElement::role);
    if (role == AccessibleRole::passwordField) return;
    if (const auto found = accessibleText()) take(*found);
}

std::optional<CaptureCandidate> Examination::accessibleText() {
    if (element == nullptr) return std::nullopt;
    auto inPage = timed(ProbeReader::axMarker, [this] { return fromTextMarkers(focused, anchor); });
    if (inPage && inPage->sentence) return inPage;
    auto inField = timed(ProbeReader::axText, [this] { return fromAttributes(); });
    return inField && (inField->sentence || !inPage) ? inField : inPage;
}

std::optional<CaptureCandidate> Examination::fromAttributes() {
    auto own = fromTextAttributes(focused, anchor);
    if ((own && own->sentence) || role == AccessibleRole::webArea) return own;
    if (auto below = fromTextAttributes(selectedDescendant(focused), anchor)) return below;
    const bool isDone = own || tellsItsText() || hasSearchedWindow;
    return isDone ? own : fromTextAttributes(foundInWindow(), anchor);
}

/// What has a selection, or else the page, in a window that does not say what is focused in it: not
/// all do so while they are not in front.
ElementRef Examination::foundInWindow() {
    hasSearchedWindow = true;
    const auto end = Clock::now() + windowSearchLimit;
    ElementRef selected;
    ElementRef page;
    walkBelow(attribute(element, &AccessibleElement::focusedWindow), windowSearch,
              [&](const ElementRef& visited) {
                  if (Clock::now() > end) return Step::stop;
                  const auto visitedRole = attribute(visited, &AccessibleElement::role);
                  if (visitedRole == AccessibleRole::webArea && page == nullptr) page = visited;
                  if (visitedRole == AccessibleRole::webArea || visitedRole == AccessibleRole::menu)
                      return Step::past;
                  if (!isSelection(attribute(visited, &AccessibleElement::selectedText)))
                      return Step::below;
                  selected = visited;
                  return Step::stop;
              });
    return selected != nullptr ? selected : page;
}

void Examination::take(const CaptureCandidate& candidate) {
    record.reader =
        candidate.method == CaptureMethod::axMarker ? ProbeReader::axMarker : ProbeReader::axText;
    record.hasSentence = candidate.sentence.has_value();
    record.hasPlace = candidate.anchor.has_value();
    record.hasSelection = true;
    record.selectedCharacters = characterCount(candidate.text);
}

void Examination::lookAtSelection() {
    const auto selected = timed(ProbeReader::selection, [this] {
        auto text = attribute(&ports.pasteboard, &Pasteboard::selectedString, application);
        return text && !trimmed(*text, isWhiteSpace).empty() ? std::move(text) : std::nullopt;
    });
    // What the desktop keeps may be old, so that a text which has no selection knows better.
    if (selected && (way == ClipboardWay::selection || !tellsItsText())) {
        record.hasSelection = true;
        record.selectedCharacters = characterCount(*selected);
    } else if (record.isOnAccessibilityBus && !needsStartOption) {
        record.hasSelection = false;
    }
    if (way == ClipboardWay::selection)
        record.reader = selected ? ProbeReader::selection : ProbeReader::none;
    else if (record.hasSelection.value_or(true))
        record.reader = ProbeReader::clipboard;
}

/// Whether what has the focus there would tell that something is selected.
bool Examination::tellsItsText() const {
    if (role == AccessibleRole::webArea) return !needsStartOption;
    return attribute(focused, &AccessibleElement::numberOfCharacters).value_or(0) > 0;
}

/// Also where nobody knows since when applications may be read.
bool Examination::mayBeOlderThanTrust() const {
    const auto start = ports.processes.startTime(application.processIdentifier);
    return !start || !ports.trustedSince || *start <= *ports.trustedSince;
}

/// Programs of that family put all their arguments into one.
bool Examination::hasStartOption() const {
    const auto arguments = ports.processes.arguments(application.processIdentifier);
    return std::ranges::any_of(arguments, [](const std::string& argument) {
        return argument.find("--force-renderer-accessibility") != std::string::npos;
    });
}

ProbeAdvice Examination::advice() const {
    if (isStopped || (session && session->hasTimedOut())) return ProbeAdvice::notResponding;
    if (role == AccessibleRole::passwordField) return ProbeAdvice::passwordField;
    if (record.reader == ProbeReader::axMarker || record.reader == ProbeReader::axText)
        return ProbeAdvice::none;
    if (needsStartOption) return ProbeAdvice::startOption;
    if (record.hasSelection == false) return ProbeAdvice::selectSomething;
    if (way == ClipboardWay::selection) return ProbeAdvice::useSelection;
    const bool isMissing = ports.isTrusted && !record.isOnAccessibilityBus;
    return isMissing && mayBeOlderThanTrust() ? ProbeAdvice::restart : ProbeAdvice::clipboardOnly;
}

ProbeRecord examined(const ProbePorts& ports, const FrontApplication& application) {
    try {
        return Examination(ports, application).run();
    } catch (const std::exception&) {
        return unasked(application);
    }
}

} // namespace

std::vector<ProbeRecord> CaptureProbe::run(const std::stop_token& stop) const {
    const auto end = Clock::now() + probeLimit;
    auto applications = attribute(&ports.workspace, &Workspace::applications);
    std::erase_if(applications,
                  [](const FrontApplication& each) { return each.processIdentifier == getpid(); });
    std::vector<ProbeRecord> records(applications.size());
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (std::size_t at = next++; at < applications.size(); at = next++) {
            const bool isInTime = !stop.stop_requested() && Clock::now() < end;
            records[at] = isInTime ? examined(ports, applications[at]) : unasked(applications[at]);
        }
    };
    std::vector<std::jthread> workers;
    for (std::size_t count = std::min(mostAtATime, applications.size()); count > 0; --count)
        workers.emplace_back(work);
    workers.clear();
    return records;
}

} // namespace tavik
