#pragma once

#include "Base/ScreenGeometry.h"
#include "Base/UTF16Range.h"
#include "Ports/Workspace.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

/// What applications tell of their windows and texts.
///
/// Everything here may throw `AccessibilityFailure`; nothing (null, an empty list) means that an
/// element answered that it has no such thing. All text is UTF-16, and all positions count its code
/// units, whatever the application counts in. Rectangles have their origin at the top left of the
/// desktop. The text of a password field is never read.
namespace tavik {

/// An application did not answer in time, is gone, or answered what makes no sense.
class AccessibilityFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What an element is, as far as readers must know.
enum class AccessibleRole { other, application, window, menu, webArea, terminal, passwordField };

class AccessibleElement;
/// Two references to the same thing on screen need not be equal.
using ElementRef = std::shared_ptr<AccessibleElement>;

/// A place in a page: a position in the whole text of an element of it, which is the text of all
/// that it contains. Blocks within it are parted by an empty line.
struct TextMarker {
    ElementRef element;
    std::int64_t offset = 0;
};

/// A stretch of a page: a range of the whole text of an element of it.
struct TextMarkerRange {
    ElementRef element;
    UTF16Range range;
};

/// Something on screen, as its application describes it. Lives no longer than its session.
class AccessibleElement {
public:
    AccessibleElement() = default;
    AccessibleElement(const AccessibleElement&) = delete;
    AccessibleElement& operator=(const AccessibleElement&) = delete;
    virtual ~AccessibleElement() = default;

    /// How long a call may take from now on, of any element of the session.
    virtual void setMessagingTimeout(std::chrono::milliseconds limit) = 0;

    // What an application tells of itself.

    /// Asks it to describe its windows; whether it does, nothing when it does not say.
    virtual std::optional<bool> setManualAccessibility() = 0;
    virtual ElementRef focusedUIElement() = 0;
    virtual ElementRef focusedWindow() = 0;

    // Where an element stands.

    virtual std::optional<AccessibleRole> role() = 0;
    virtual ElementRef parent() = 0;
    /// The first children, at most `limit`.
    virtual std::vector<ElementRef> children(std::size_t limit) = 0;
    /// The address of a page or document.
    virtual std::optional<std::string> url() = 0;
    /// The address of the document that a window shows.
    virtual std::optional<std::string> document() = 0;

    // Plain text. An element of a page has no selection of this kind, but one of markers, unless it
    // is a text field that has the focus.

    /// Its whole text; nothing also where that is too long to be read at once.
    virtual std::optional<std::u16string> value() = 0;
    virtual std::optional<std::int64_t> numberOfCharacters() = 0;
    virtual std::optional<std::u16string> selectedText() = 0;
    virtual std::optional<UTF16Range> selectedTextRange() = 0;
    virtual std::optional<std::u16string> stringForRange(UTF16Range range) = 0;
    virtual std::optional<ScreenRect> boundsForRange(UTF16Range range) = 0;

    // Text of a page. Ranges and markers may be of any element of the same session.

    /// What is selected in this element, or else in the page around it.
    virtual std::optional<TextMarkerRange> selectedTextMarkerRange() = 0;
    virtual std::optional<std::u16string>
    stringForTextMarkerRange(const TextMarkerRange& range) = 0;
    virtual std::optional<ScreenRect> boundsForTextMarkerRange(const TextMarkerRange& range) = 0;
    virtual std::optional<TextMarkerRange>
    textMarkerRangeForUIElement(const ElementRef& element) = 0;
    /// The innermost block around the marker. It speaks of the same element as `marker` wherever
    /// that is the block itself.
    virtual std::optional<TextMarkerRange>
    paragraphTextMarkerRangeForTextMarker(const TextMarker& marker) = 0;
};

/// One reading of the desktop, for one thread.
///
/// It ends at its deadline, and at the first call that is not answered in time: every later call
/// fails at once.
class AccessibilitySession {
public:
    AccessibilitySession() = default;
    AccessibilitySession(const AccessibilitySession&) = delete;
    AccessibilitySession& operator=(const AccessibilitySession&) = delete;
    virtual ~AccessibilitySession() = default;

    /// Knows what is focused on a desktop that does not tell which application is in front; null
    /// focus on others.
    virtual ElementRef systemWideElement() = 0;

    /// Null when that application tells nothing of itself.
    virtual ElementRef applicationElement(std::int64_t processIdentifier) = 0;

    /// Whether an application has left a call unanswered, or the time was up before it had answered
    /// all.
    virtual bool hasTimedOut() const = 0;
};

class Accessibility {
public:
    virtual ~Accessibility() = default;

    /// `front` is what the desktop tells of the application in front. Any thread may call; several
    /// sessions may be under way.
    virtual std::unique_ptr<AccessibilitySession>
    startSession(const std::optional<FrontApplication>& front, std::chrono::milliseconds limit) = 0;
};

} // namespace tavik
