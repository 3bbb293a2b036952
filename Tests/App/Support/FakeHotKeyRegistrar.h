#pragma once

#include "Ports/HotKeyRegistrar.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

namespace tavik::test {

/// A desktop that grants every combination but those that the test says are taken.
class FakeHotKeyRegistrar final : public HotKeyRegistrar {
public:
    using Combination = std::pair<std::uint32_t, std::uint32_t>;

    bool registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers) override {
        const Combination wanted(keyCode, modifiers);
        held = wanted == taken ? std::nullopt : std::optional(wanted);
        registered.set(held.has_value());
        return registered.value();
    }

    void unregisterHotKey() override {
        held.reset();
        registered.set(false);
    }

    const Published<bool>& isRegistered() const override { return registered; }

    const Published<bool>& isAsking() const override { return asking; }

    void setOnPress(std::function<void()> onPress) override { press = std::move(onPress); }

    std::optional<Combination> held;
    std::optional<Combination> taken;
    std::function<void()> press;
    Published<bool> asking{false};

private:
    Published<bool> registered{false};
};

} // namespace tavik::test
