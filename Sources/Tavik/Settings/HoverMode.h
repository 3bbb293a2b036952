#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace tavik {

/// When the word under a resting mouse is looked up.
enum class HoverMode {
    off,
    always,
    /// Only while the Option key is held.
    withOption,
};

inline constexpr std::array allHoverModes{HoverMode::off, HoverMode::always, HoverMode::withOption};

/// The text under which preferences keep the mode.
std::string_view rawValue(HoverMode mode);
std::optional<HoverMode> hoverModeFromRawValue(std::string_view text);

/// The mode's name for people.
std::string_view label(HoverMode mode);

} // namespace tavik
