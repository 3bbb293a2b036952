#pragma once

#include "Ports/PreferenceStore.h"

#include <utility>

namespace tavik {

/// Preferences that end with the process: for runs that must leave nothing behind.
class MemoryPreferenceStore final : public PreferenceStore {
public:
    explicit MemoryPreferenceStore(Preferences initial = {}) : preferences(std::move(initial)) {}

    const Preferences& values() const override { return preferences; }

    void set(std::string_view key, PreferenceValue value) override {
        preferences.set(key, std::move(value));
    }

    void remove(std::string_view key) override { preferences.remove(key); }

    void flush() override {}

    std::optional<std::string> failure() const override { return std::nullopt; }

private:
    Preferences preferences;
};

} // namespace tavik
