#pragma once

#include <cstdint>
#include <string_view>

namespace tavik {

/// A key of the classic event manager, in whose virtual key codes combinations are kept, and what
/// the same key is on this desktop.
struct ClassicKey {
    std::uint32_t code;
    /// What it writes or does without Shift, on the keyboard of the United States.
    std::uint32_t keysym;
    /// The name of `keysym` as libxkbcommon reads it.
    std::string_view keysymName;
    /// X's code of the key at the same place, by the rules "evdev".
    std::uint8_t evdevKey;
};

/// Null for modifiers, and for codes that no key has. Any thread may call; never freed.
const ClassicKey* classicKey(std::uint32_t code);

/// The key that has this meaning; a letter may be upper-case, and a key of the number pad may mean
/// what it does without NumLock. Null when there is none.
const ClassicKey* classicKeyOfKeysym(std::uint32_t keysym);

} // namespace tavik
