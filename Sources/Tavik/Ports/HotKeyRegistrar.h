#pragma once

#include "Base/Published.h"

#include <cstdint>
#include <functional>

namespace tavik {

/// Has one combination of keys that is the program's own in every application. For the main thread.
class HotKeyRegistrar {
public:
    virtual ~HotKeyRegistrar() = default;

    /// Gives up the combination that was ours and asks for this one: a virtual key code of the
    /// classic event manager and its mask (command 0x100, shift 0x200, option 0x800, control
    /// 0x1000). Whether it is ours now; false also where the desktop has yet to answer, which
    /// `isRegistered` then tells.
    virtual bool registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers) = 0;

    /// Leaves none.
    virtual void unregisterHotKey() = 0;

    /// Whether the combination that was asked for last is ours at present.
    virtual const Published<bool>& isRegistered() const = 0;

    /// Whether the desktop has yet to answer, as where it asks the user.
    virtual const Published<bool>& isAsking() const = 0;

    /// Called for every press, but not for those that the keyboard repeats while it is held.
    virtual void setOnPress(std::function<void()> onPress) = 0;
};

} // namespace tavik
