#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tavik {

/// A combination in the words that desktops share for shortcuts, such as "CTRL+LOGO+F5": of a
/// virtual key code of the classic event manager and its mask. None for a code that no key has.
std::optional<std::string> shortcutTrigger(std::uint32_t keyCode, std::uint32_t modifiers);

} // namespace tavik
