#include "Learning/ReminderPlanner.h"

#include <gtest/gtest.h>

namespace tavik {
namespace {

using ReminderPlanner::nextFireDate;
using ReminderPlanner::plan;
using WallTime = Calendar::WallTime;

/// The moment of a UTC wall time.
Date utc(Calendar::Day day, int hour, int minute) {
    return Calendar("UTC").date(day, hour, minute);
}

struct ZoneTest : testing::Test {
    /// What the clock shows when the next reminder after `after` fires.
    static WallTime next(const Calendar& calendar, Date after, int hour, int minute) {
        const Date fire = nextFireDate(after, hour, minute, calendar);
        EXPECT_GT(fire, after);
        return calendar.wallTime(fire);
    }
};

TEST_F(ZoneTest, theReminderLiesStrictlyAfterNow) {
    const Calendar shanghai("Asia/Shanghai");
    const auto at = [&](int hour, int minute) {
        return shanghai.date({2026, 12, 31}, hour, minute);
    };
    EXPECT_EQ(next(shanghai, at(8, 59), 9, 0), (WallTime{{2026, 12, 31}, 9, 0, 0}));
    EXPECT_EQ(next(shanghai, at(9, 0), 9, 0), (WallTime{{2027, 1, 1}, 9, 0, 0}));
    EXPECT_EQ(next(shanghai, at(9, 0) - std::chrono::milliseconds(1), 9, 0).day.day, 31);
    EXPECT_EQ(next(shanghai, dateFromSeconds(-3600), 0, 0), (WallTime{{1970, 1, 2}, 0, 0, 0}))
        << "a clock set back before 1970";
    EXPECT_EQ(next(shanghai, shanghai.date({2038, 1, 19}, 12, 0), 9, 0),
              (WallTime{{2038, 1, 20}, 9, 0, 0}));
    EXPECT_EQ(next(shanghai, shanghai.date({2420, 2, 28}, 22, 0), 21, 30),
              (WallTime{{2420, 2, 29}, 21, 30, 0}));
}

TEST_F(ZoneTest, aChangeOfTheClockKeepsTheTimeOnTheWall) {
    struct Change {
        const char* zone;
        Calendar::Day dayBefore;
    };

    for (const auto& [zone, dayBefore] :
         {Change{"Europe/Berlin", {2026, 3, 28}}, Change{"Europe/Berlin", {2026, 10, 24}},
          Change{"America/New_York", {2027, 3, 13}}, Change{"America/New_York", {2027, 11, 6}},
          Change{"Australia/Lord_Howe", {2026, 4, 4}}, Change{"Australia/Lord_Howe", {2026, 10, 3}},
          Change{"America/Sao_Paulo", {2018, 11, 3}}, Change{"Africa/Casablanca", {2027, 3, 13}},
          Change{"America/Los_Angeles", {2045, 3, 11}}}) {
        const Calendar calendar(zone);
        const Date evening = calendar.date(dayBefore, 21, 0);
        const WallTime fire = next(calendar, evening, 9, 15);
        EXPECT_EQ(fire, (WallTime{{dayBefore.year, dayBefore.month, dayBefore.day + 1}, 9, 15, 0}))
            << zone;
    }
}

TEST_F(ZoneTest, aSkippedTimeMovesForwardAndARepeatedOneIsTheFirst) {
    const Calendar berlin("Europe/Berlin");
    EXPECT_EQ(nextFireDate(utc({2026, 3, 28}, 22, 0), 2, 30, berlin), utc({2026, 3, 29}, 1, 30))
        << "02:30 is 03:30 then";
    EXPECT_EQ(next(berlin, utc({2026, 3, 29}, 5, 0), 2, 30), (WallTime{{2026, 3, 30}, 2, 30, 0}));
    EXPECT_EQ(nextFireDate(utc({2026, 10, 24}, 20, 0), 2, 30, berlin), utc({2026, 10, 25}, 0, 30));
    EXPECT_EQ(nextFireDate(utc({2026, 10, 25}, 1, 0), 2, 30, berlin), utc({2026, 10, 26}, 1, 30))
        << "not a second time in the repeated hour";
    const Calendar lordHowe("Australia/Lord_Howe");
    EXPECT_EQ(next(lordHowe, lordHowe.date({2026, 10, 3}, 20, 0), 2, 15),
              (WallTime{{2026, 10, 4}, 2, 45, 0}))
        << "a change of half an hour";
    const Calendar samoa("Pacific/Apia");
    EXPECT_EQ(next(samoa, samoa.date({2011, 12, 29}, 12, 0), 9, 0),
              (WallTime{{2011, 12, 31}, 9, 0, 0}))
        << "a day that does not exist";
}

TEST_F(ZoneTest, aDayBeginsWithItsFirstMoment) {
    const Calendar saoPaulo("America/Sao_Paulo");
    EXPECT_EQ(saoPaulo.wallTime(saoPaulo.startOfDay(saoPaulo.date({2018, 11, 4}, 15, 0))),
              (WallTime{{2018, 11, 4}, 1, 0, 0}));
    EXPECT_EQ(saoPaulo.wallTime(saoPaulo.startOfDay(saoPaulo.date({2018, 12, 30}, 0, 0), 3)),
              (WallTime{{2019, 1, 2}, 0, 0, 0}));
    EXPECT_THROW(Calendar("Europe/Atlantis"), std::invalid_argument);
    EXPECT_NO_THROW(Calendar::current().wallTime(utc({2026, 1, 1}, 0, 0)));
}

TEST(ReminderPlan, asksOnceForTheCardsDueWhenItFires) {
    const Calendar shanghai("Asia/Shanghai");
    const Date now = shanghai.date({2026, 11, 21}, 20, 0);
    std::vector<Date> asked;
    const auto planFor = [&](std::int64_t count) {
        return plan(
            now, 9, 0,
            [&](Date at) {
                asked.push_back(at);
                return count;
            },
            shanghai);
    };
    const auto five = planFor(5);
    EXPECT_EQ(five->fireDate, shanghai.date({2026, 11, 22}, 9, 0));
    EXPECT_EQ(asked, std::vector{five->fireDate});
    EXPECT_EQ(five->dueCount, 5);
    EXPECT_EQ(five->title, "Tavik 生词复习");
    EXPECT_EQ(five->body, "今天有 5 个生词该复习了，大约 1 分钟。");
    EXPECT_EQ(planFor(1)->body, "今天有 1 个生词该复习了，大约 1 分钟。");
    EXPECT_EQ(planFor(6)->body, "今天有 6 个生词该复习了，大约 2 分钟。");
    EXPECT_EQ(planFor(50)->body, "今天有 50 个生词该复习了，大约 10 分钟。");
    EXPECT_EQ(planFor(0), std::nullopt);
}

} // namespace
} // namespace tavik
