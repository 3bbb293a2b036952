#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavik {

/// What reads the selected text of an application.
enum class ProbeReader {
    none,
    axMarker,
    axText,
    /// What the desktop keeps of the last selection.
    selection,
    /// A copy would be tried; a probe does not do it.
    clipboard,
};

/// "ax-marker", "ax-text", "selection", "clipboard" or "none".
std::string_view text(ProbeReader reader);

/// What the user can do so that more of an application can be read.
enum class ProbeAdvice {
    none,
    /// Select something and probe again: it has told that nothing is selected.
    selectSomething,
    /// Select before the hot key is pressed: no copy is tried in a terminal.
    useSelection,
    /// Start it with the option by which it describes its pages.
    startOption,
    /// Quit and start it again: it was there before accessibility was.
    restart,
    /// Nothing: only the clipboard is left.
    clipboardOnly,
    /// It does not respond.
    notResponding,
    /// The keyboard is in a password field, which is never read.
    passwordField,
    /// There was no time left to look at it.
    notAsked,
};

/// The name of its case.
std::string_view text(ProbeAdvice advice);

/// One reader at work.
struct ProbeStep {
    ProbeReader reader = ProbeReader::none;
    double milliseconds = 0;
    bool hasText = false;

    bool operator==(const ProbeStep&) const = default;
};

/// How well one application can be read. The text itself is not kept.
struct ProbeRecord {
    std::optional<std::string> name;
    std::optional<std::string> identifier;
    /// 0 when its windows do not tell.
    std::int64_t processIdentifier = 0;
    /// The one that a capture would take.
    ProbeReader reader = ProbeReader::none;
    std::vector<ProbeStep> steps;
    double milliseconds = 0;
    bool hasSentence = false;
    /// Whether it told where on the screen the selection is.
    bool hasPlace = false;
    /// Nothing when nobody tells.
    std::optional<bool> hasSelection;
    /// As people count them.
    std::size_t selectedCharacters = 0;
    bool isOnAccessibilityBus = false;
    /// Whether its windows have contents there; nothing when it does not say.
    std::optional<bool> describesPages;
    ProbeAdvice advice = ProbeAdvice::notAsked;

    bool operator==(const ProbeRecord&) const = default;
};

} // namespace tavik
