#include "Learning/ReminderPlanner.h"

namespace tavik::ReminderPlanner {
namespace {

/// At 12 seconds a word.
constexpr std::int64_t wordsPerMinute = 5;

} // namespace

std::string body(std::int64_t dueCount) {
    const std::int64_t minutes =
        dueCount / wordsPerMinute + (dueCount % wordsPerMinute > 0 ? 1 : 0);
    return "今天有 " + std::to_string(dueCount) + " 个生词该复习了，大约 " + std::to_string(minutes)
           + " 分钟。";
}

Date nextFireDate(Date after, int hour, int minute, const Calendar& calendar) {
    Calendar::Day day = calendar.wallTime(after).day;
    const Date today = calendar.date(day, hour, minute);
    if (today > after) return today;
    // From the day anew, for where the clock skipped today's time, tomorrow's is not 24 hours
    // later.
    ++day.day;
    return calendar.date(day, hour, minute);
}

std::optional<Plan> plan(Date now, int hour, int minute,
                         const std::function<std::int64_t(Date)>& dueCount,
                         const Calendar& calendar) {
    const Date fireDate = nextFireDate(now, hour, minute, calendar);
    const std::int64_t count = dueCount(fireDate);
    if (count < 1) return std::nullopt;
    return Plan{fireDate, count, title, body(count)};
}

} // namespace tavik::ReminderPlanner
