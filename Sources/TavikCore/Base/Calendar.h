#pragma once

#include "Base/Date.h"

#include <string>

namespace tavik {

/// The wall clock of one time zone. A plain value, safe from any thread.
class Calendar {
public:
    struct Day {
        int year;
        /// 1 to 12.
        int month;
        /// 1 to 31.
        int day;

        bool operator==(const Day&) const = default;
    };

    struct WallTime {
        Day day;
        int hour;
        int minute;
        int second;

        bool operator==(const WallTime&) const = default;
    };

    /// `timeZone` is a name of the IANA database, such as "Europe/Berlin". Throws
    /// `std::invalid_argument` when there is no such zone.
    explicit Calendar(std::string timeZone);

    /// The calendar of the time zone in which this machine stands at the moment of the call.
    static Calendar current();

    /// What the clock on the wall shows at `date`.
    WallTime wallTime(Date date) const;

    /// What the clock shows at `date`, for people: "2026-11-21 19:38".
    std::string text(Date date) const;

    /// When the clock shows that time of that day. A day past the end of its month counts on into
    /// the next. A time that a change of the clock skips moves forward by what was skipped; of a
    /// time that comes twice it is the first.
    Date date(Day day, int hour, int minute) const;

    /// The first moment of the day of `date`, moved by `days` days.
    Date startOfDay(Date date, int days = 0) const;

private:
    std::string timeZone;
};

} // namespace tavik
