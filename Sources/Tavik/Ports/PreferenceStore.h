#pragma once

#include "Base/Preferences.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// Where preferences are kept. For the main thread.
class PreferenceStore {
public:
    virtual ~PreferenceStore() = default;

    virtual const Preferences& values() const = 0;

    /// A change holds at once, and is kept when the call returns unless `failure` then says why
    /// not.
    virtual void set(std::string_view key, PreferenceValue value) = 0;
    virtual void remove(std::string_view key) = 0;

    /// Tries again to keep what could not be kept, if anything.
    virtual void flush() = 0;

    /// Why there are changes that are not kept: a Chinese sentence that says what to do.
    virtual std::optional<std::string> failure() const = 0;
};

} // namespace tavik
