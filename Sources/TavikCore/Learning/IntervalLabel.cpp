#include "Learning/IntervalLabel.h"

#include "Base/Fatal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace tavik {
namespace {

constexpr double secondsPerMinute = 60;
constexpr double secondsPerHour = 3600;
constexpr int daysPerMonth = 30;
constexpr int daysPerYear = 365;

std::int64_t rounded(double number) {
    constexpr double bound = 0x1p63;
    const double whole = std::round(number);
    if (!(whole >= -bound && whole < bound)) fatal("an interval is no number of days");
    return static_cast<std::int64_t>(whole);
}

/// With one decimal and a point, whatever the locale.
std::string withOneDecimal(double number) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.begin(), text.end(), number, std::chars_format::fixed, 1);
    return {text.begin(), end.ptr};
}

} // namespace

std::string intervalLabel(Date from, Date to) {
    const double seconds = (to - from).count();
    if (seconds < secondsPerHour) {
        const double minutes = std::max(seconds / secondsPerMinute, 1.0);
        return std::to_string(rounded(minutes)) + " 分钟后";
    }
    if (seconds < secondsPerDay)
        return std::to_string(rounded(seconds / secondsPerHour)) + " 小时后";
    const std::int64_t days = rounded(seconds / secondsPerDay);
    if (days <= daysPerMonth) return std::to_string(days) + " 天后";
    if (days >= daysPerYear)
        return withOneDecimal(static_cast<double>(days) / daysPerYear) + " 年后";
    return std::to_string(rounded(static_cast<double>(days) / daysPerMonth)) + " 个月后";
}

} // namespace tavik
