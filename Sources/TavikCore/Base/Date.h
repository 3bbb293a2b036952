#pragma once

#include <chrono>
#include <string>

namespace tavik {

/// A moment, in seconds since 1970-01-01 00:00 UTC. The databases store the same number as REAL.
using Date = std::chrono::sys_time<std::chrono::duration<double>>;

inline constexpr double secondsPerDay = 86400;

inline Date dateFromSeconds(double secondsSince1970) {
    return Date(std::chrono::duration<double>(secondsSince1970));
}

inline double secondsSince1970(Date date) {
    return date.time_since_epoch().count();
}

inline Date currentDate() {
    return std::chrono::system_clock::now();
}

/// `date` in UTC as "2026-11-21T11:38:52.125Z". For years 0 to 9999.
std::string iso8601(Date date);

} // namespace tavik
