#pragma once

#include "Ports/HotKeyRegistrar.h"
#include "Settings/HotKeyCombo.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace tavik {

/// The one combination of keys that starts something from every application. For the main thread.
class HotKeyManager {
public:
    /// The registrar must outlive this object, and be no other's: it holds one combination only.
    explicit HotKeyManager(HotKeyRegistrar& registrar);
    /// Gives the combination up.
    ~HotKeyManager();
    HotKeyManager(const HotKeyManager&) = delete;
    HotKeyManager& operator=(const HotKeyManager&) = delete;

    /// Gives up the earlier combination, also where the new one is refused. Whether the desktop has
    /// granted it; if it has yet to answer that is false, and `isRegistered` tells.
    bool register_(const HotKeyCombo& combo, std::function<void()> action);

    const Published<bool>& isRegistered() const { return registrar.isRegistered(); }

    /// Whether the desktop has yet to answer.
    const Published<bool>& isAsking() const { return registrar.isAsking(); }

    /// A combination's mask for the flags of a window system's key event: command 0x100000, option
    /// 0x80000, control 0x40000 and shift 0x20000. Others are ignored.
    static std::uint32_t carbonFlags(std::uint32_t modifierFlags);

private:
    HotKeyRegistrar& registrar;
    std::shared_ptr<std::function<void()>> action;
};

} // namespace tavik
