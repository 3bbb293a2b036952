#pragma once

#include "Base/Date.h"
#include "Settings/AppSettings.h"

#include <cstdint>
#include <optional>

namespace tavik {

/// What the reminders ask of the program that they belong to.
class ReminderHost {
public:
    virtual ~ReminderHost() = default;

    virtual AppSettings& settings() = 0;

    /// How many cards of the book are due at a moment; nothing when the book cannot be read.
    virtual std::optional<std::int64_t> dueCount(Date at) = 0;

    /// Counts the due cards anew and has the reminders planned again.
    virtual void refreshCounts() = 0;
};

} // namespace tavik
