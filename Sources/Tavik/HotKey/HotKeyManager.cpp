#include "HotKey/HotKeyManager.h"

#include <array>
#include <utility>

namespace tavik {

HotKeyManager::HotKeyManager(HotKeyRegistrar& registrar)
    : registrar(registrar), action(std::make_shared<std::function<void()>>()) {
    registrar.setOnPress([weak = std::weak_ptr(action)] {
        const auto current = weak.lock();
        if (!current || !*current) return;
        // It may register another, or end us.
        const auto call = *current;
        call();
    });
}

HotKeyManager::~HotKeyManager() {
    registrar.setOnPress({});
    registrar.unregisterHotKey();
}

bool HotKeyManager::register_(const HotKeyCombo& combo, std::function<void()> action) {
    *this->action = std::move(action);
    return registrar.registerHotKey(combo.keyCode, combo.carbonModifiers);
}

std::uint32_t HotKeyManager::carbonFlags(std::uint32_t modifierFlags) {
    struct Pair {
        std::uint32_t flag;
        std::uint32_t bit;
    };

    constexpr auto pairs = std::to_array<Pair>({
        {0x100000, 0x100},
        {0x80000, 0x800},
        {0x40000, 0x1000},
        {0x20000, 0x200},
    });
    std::uint32_t mask = 0;
    for (const Pair& pair : pairs)
        if ((modifierFlags & pair.flag) != 0) mask |= pair.bit;
    return mask;
}

} // namespace tavik
