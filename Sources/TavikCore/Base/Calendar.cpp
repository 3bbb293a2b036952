#include "Base/Calendar.h"

#include "Base/Fatal.h"

#include <unicode/gregocal.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <utility>

namespace tavik {
namespace {

constexpr double millisecondsPerSecond = 1000;

std::unique_ptr<icu::TimeZone> makeZone(const std::string& name) {
    return std::unique_ptr<icu::TimeZone>(
        icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name)));
}

/// The name of the zone that lies `milliseconds` east of Greenwich: "GMT+08:00". Settings such as
/// TZ=CST-8 say no more than that.
std::string offsetName(std::int32_t milliseconds) {
    constexpr int millisecondsPerMinute = 60000;
    constexpr int minutesPerHour = 60;
    const int minutes = std::abs(milliseconds) / millisecondsPerMinute;
    std::array<char, 32> name{};
    static_cast<void>(std::snprintf(name.data(), name.size(), "GMT%c%02d:%02d",
                                    milliseconds < 0 ? '-' : '+', minutes / minutesPerHour,
                                    minutes % minutesPerHour));
    return name.data();
}

void require(UErrorCode status) {
    if (U_FAILURE(status)) fatal("the calendar has no such moment");
}

icu::GregorianCalendar makeCalendar(const std::string& timeZone) {
    UErrorCode status = U_ZERO_ERROR;
    icu::GregorianCalendar calendar(makeZone(timeZone).release(), icu::Locale::getRoot(), status);
    require(status);
    calendar.setSkippedWallTimeOption(UCAL_WALLTIME_LAST);
    calendar.setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
    return calendar;
}

} // namespace

Calendar::Calendar(std::string timeZone) : timeZone(std::move(timeZone)) {
    if (*makeZone(this->timeZone) == icu::TimeZone::getUnknown())
        throw std::invalid_argument("no such time zone: " + this->timeZone);
}

Calendar Calendar::current() {
    const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString name;
    std::string utf8;
    zone->getID(name).toUTF8String(utf8);
    const bool isNamed = *makeZone(utf8) != icu::TimeZone::getUnknown();
    return Calendar(isNamed ? utf8 : offsetName(zone->getRawOffset()));
}

Calendar::WallTime Calendar::wallTime(Date date) const {
    icu::GregorianCalendar calendar = makeCalendar(timeZone);
    UErrorCode status = U_ZERO_ERROR;
    calendar.setTime(secondsSince1970(date) * millisecondsPerSecond, status);
    const auto field = [&](UCalendarDateFields name) { return calendar.get(name, status); };
    const WallTime result{
        {field(UCAL_YEAR), field(UCAL_MONTH) + 1, field(UCAL_DATE)},
        field(UCAL_HOUR_OF_DAY),
        field(UCAL_MINUTE),
        field(UCAL_SECOND),
    };
    require(status);
    return result;
}

std::string Calendar::text(Date date) const {
    const auto [day, hour, minute, second] = wallTime(date);
    std::array<char, 64> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d", day.year,
                                    day.month, day.day, hour, minute));
    return text.data();
}

Date Calendar::date(Day day, int hour, int minute) const {
    icu::GregorianCalendar calendar = makeCalendar(timeZone);
    UErrorCode status = U_ZERO_ERROR;
    calendar.clear();
    calendar.set(day.year, day.month - 1, day.day, hour, minute, 0);
    const double milliseconds = calendar.getTime(status);
    require(status);
    return dateFromSeconds(milliseconds / millisecondsPerSecond);
}

Date Calendar::startOfDay(Date date, int days) const {
    Day day = wallTime(date).day;
    day.day += days;
    return this->date(day, 0, 0);
}

} // namespace tavik
