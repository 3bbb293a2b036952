#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// A key with its modifiers, in the numbers of the classic event manager: a virtual key code, and a
/// mask of command 0x100, shift 0x200, option 0x800 and control 0x1000.
struct HotKeyCombo {
    std::uint32_t keyCode = 2;
    std::uint32_t carbonModifiers = 0x800;

    bool operator==(const HotKeyCombo&) const = default;
};

/// The form in which preferences keep a combination: {"keyCode":2,"carbonModifiers":2048}.
std::string hotKeyJSON(const HotKeyCombo& combo);

/// Nothing when the text is no such form.
std::optional<HotKeyCombo> hotKeyFromJSON(std::string_view text);

} // namespace tavik
