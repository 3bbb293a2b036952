#pragma once

#include "Ports/HotKeyRegistrar.h"

namespace tavik {

/// No combination is ever ours.
class NullHotKeyRegistrar final : public HotKeyRegistrar {
public:
    bool registerHotKey(std::uint32_t /*keyCode*/, std::uint32_t /*modifiers*/) override {
        return false;
    }

    void unregisterHotKey() override {}

    const Published<bool>& isRegistered() const override { return never; }

    const Published<bool>& isAsking() const override { return never; }

    void setOnPress(std::function<void()> /*onPress*/) override {}

private:
    Published<bool> never{false};
};

} // namespace tavik
