#include "Learning/DueLabel.h"

#include <array>
#include <chrono>
#include <cstdio>

namespace tavik {
namespace {

constexpr int lastCountedDay = 30;

std::int64_t dayNumber(Calendar::Day day) {
    using namespace std::chrono;
    const sys_days midnight = year(day.year) / month(static_cast<unsigned>(day.month))
                              / std::chrono::day(static_cast<unsigned>(day.day));
    return midnight.time_since_epoch().count();
}

std::string clock(const Calendar::WallTime& time) {
    std::array<char, 32> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%02d:%02d", time.hour, time.minute));
    return text.data();
}

std::string date(Calendar::Day day) {
    return std::to_string(day.year) + "年" + std::to_string(day.month) + "月"
           + std::to_string(day.day) + "日";
}

} // namespace

std::string dueLabel(Date due, Date now, const Calendar& calendar) {
    if (due <= now) return "现在";
    const Calendar::WallTime then = calendar.wallTime(due);
    const std::int64_t days = dayNumber(then.day) - dayNumber(calendar.wallTime(now).day);
    if (days <= 0) return "今天 " + clock(then);
    if (days == 1) return "明天";
    if (days > lastCountedDay) return date(then.day);
    return std::to_string(days) + " 天后";
}

} // namespace tavik
