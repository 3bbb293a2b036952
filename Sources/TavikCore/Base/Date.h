#pragma once

#include <chrono>

namespace tavik {

/// A moment, in seconds since 1970-01-01 00:00 UTC. The databases store the same number as REAL.
using Date = std::chrono::sys_time<std::chrono::duration<double>>;

inline Date dateFromSeconds(double secondsSince1970) {
    return Date(std::chrono::duration<double>(secondsSince1970));
}

inline double secondsSince1970(Date date) {
    return date.time_since_epoch().count();
}

} // namespace tavik
