#include "Learning/DueLabel.h"
#include "Learning/IntervalLabel.h"

#include <gtest/gtest.h>

#include <limits>
#include <string_view>
#include <utility>
#include <vector>

namespace tavik {
namespace {

const Date start = dateFromSeconds(1.7e9);

std::string after(double seconds) {
    return intervalLabel(start, start + std::chrono::duration<double>(seconds));
}

TEST(IntervalLabel, changesItsUnitExactlyAtTheBoundaries) {
    constexpr double day = secondsPerDay;
    const std::vector<std::pair<double, std::string_view>> cases{
        {-1e18, "1 分钟后"},      {10, "1 分钟后"},           {90, "2 分钟后"},
        {3580, "60 分钟后"},      {3599.9, "60 分钟后"},      {3600, "1 小时后"},
        {85200, "24 小时后"},     {86399, "24 小时后"},       {86400, "1 天后"},
        {30.4 * day, "30 天后"},  {30.6 * day, "1 个月后"},   {45 * day, "2 个月后"},
        {364 * day, "12 个月后"}, {364.4 * day, "12 个月后"}, {364.5 * day, "1.0 年后"},
        {548 * day, "1.5 年后"},  {36500 * day, "100.0 年后"}};
    for (const auto& [seconds, label] : cases)
        EXPECT_EQ(after(seconds), label) << seconds;
}

TEST(IntervalLabelDeathTest, aDistanceThatIsNoNumberStopsTheProgram) {
    EXPECT_DEATH(after(std::numeric_limits<double>::quiet_NaN()), "interval");
    EXPECT_DEATH(after(1e300), "interval");
}

TEST(DueLabel, countsDaysOnTheCalendarNotInHours) {
    const Calendar berlin("Europe/Berlin");
    const Date evening = berlin.date({2026, 3, 28}, 23, 30);
    const auto label = [&](Calendar::Day day, int hour, int minute) {
        return dueLabel(berlin.date(day, hour, minute), evening, berlin);
    };
    EXPECT_EQ(dueLabel(evening, evening, berlin), "现在");
    EXPECT_EQ(label({2026, 3, 1}, 0, 0), "现在");
    EXPECT_EQ(label({2026, 3, 28}, 23, 59), "今天 23:59");
    EXPECT_EQ(label({2026, 3, 29}, 0, 0), "明天");
    EXPECT_EQ(label({2026, 3, 29}, 23, 59), "明天") << "a day of 23 hours";
    EXPECT_EQ(label({2026, 4, 2}, 9, 0), "5 天后");
    EXPECT_EQ(label({2026, 4, 27}, 9, 0), "30 天后");
    EXPECT_EQ(label({2026, 4, 28}, 9, 0), "2026年4月28日");
}

TEST(DueLabel, holdsInEveryZoneOverItsChangesAndInAnyYear) {
    struct Change {
        const char* zone;
        Calendar::Day day;
    };

    for (const Change& change :
         {Change{"Europe/London", {2026, 10, 25}}, Change{"America/New_York", {2038, 3, 14}},
          Change{"Australia/Lord_Howe", {2045, 10, 1}}, Change{"America/Santiago", {2026, 9, 6}},
          Change{"Asia/Shanghai", {2100, 2, 28}}}) {
        const char* const zone = change.zone;
        const Calendar::Day day = change.day;
        const Calendar calendar(zone);
        const Date dawn = calendar.date(day, 4, 0);
        const auto label = [&](int days, int hour) {
            return dueLabel(calendar.date({day.year, day.month, day.day + days}, hour, 30), dawn,
                            calendar);
        };
        EXPECT_EQ(label(0, 23), "今天 23:30") << zone;
        EXPECT_EQ(label(1, 0), "明天") << zone;
        EXPECT_EQ(label(2, 0), "2 天后") << zone;
        EXPECT_EQ(label(30, 23), "30 天后") << zone;
        EXPECT_EQ(dueLabel(dawn, calendar.startOfDay(dawn, -1), calendar), "明天") << "set back";
        EXPECT_EQ(label(-1, 23), "现在") << zone;
    }
}

} // namespace
} // namespace tavik
