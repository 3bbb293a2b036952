#pragma once

#include "Base/PreferencesFile.h"
#include "Ports/PreferenceStore.h"

#include <filesystem>
#include <utility>

namespace tavik {

/// Preferences in a JSON file of the user's.
class JSONPreferenceStore final : public PreferenceStore {
public:
    explicit JSONPreferenceStore(std::filesystem::path path) : file(std::move(path)) {}

    const Preferences& values() const override { return file.values(); }

    void set(std::string_view key, PreferenceValue value) override {
        file.set(key, std::move(value));
    }

    void remove(std::string_view key) override { file.remove(key); }

    void flush() override { file.flush(); }

    std::optional<std::string> failure() const override { return file.failure(); }

private:
    PreferencesFile file;
};

} // namespace tavik
