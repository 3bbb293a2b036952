#pragma once

#include "Base/Calendar.h"
#include "Base/Date.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// Decides when the daily reminder comes and what it says. Pure functions.
namespace tavik::ReminderPlanner {

inline constexpr const char* title = "Tavik 生词复习";

/// What a reminder says when so many cards are due.
std::string body(std::int64_t dueCount);

struct Plan {
    Date fireDate;
    /// How many cards will be due then.
    std::int64_t dueCount = 0;
    std::string title;
    std::string body;

    bool operator==(const Plan&) const = default;
};

/// The next time the clock shows `hour`:`minute`, strictly after `after`.
Date nextFireDate(Date after, int hour, int minute, const Calendar& calendar);

/// The next reminder, or nothing when no card will be due by then. `dueCount` tells how many cards
/// are due at a moment; it is asked once, for the time of the reminder.
std::optional<Plan> plan(Date now, int hour, int minute,
                         const std::function<std::int64_t(Date)>& dueCount,
                         const Calendar& calendar);

} // namespace tavik::ReminderPlanner
