#pragma once

#include "Settings/HotKeyCombo.h"

#include <cstdint>
#include <string>

namespace tavik {

namespace KeyNames {

/// What is printed on the key with this virtual key code of the classic event manager; "#" and the
/// number for a key that has no name here.
std::string name(std::uint32_t keyCode);

} // namespace KeyNames

/// The combination in symbols, such as "⌥D".
std::string display(const HotKeyCombo& combo);

/// The combination in the names that keyboards of this desktop have on them, such as "Alt+D".
std::string localName(const HotKeyCombo& combo);

} // namespace tavik
