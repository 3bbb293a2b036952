#include "Platform/Qt/QtTimers.h"
#include "Platform/Support/LoopWatch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>

namespace tavik {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

TEST(TimersTests, tasksComeInTheOrderOfTheirTimesNeverTooEarlyAndNeverWithinTheCall) {
    QtTimers timers;
    test::LoopWatch loop;
    std::string order;
    const auto start = Clock::now();
    std::optional<Clock::duration> time;
    const auto last = timers.after(0.05s, [&] {
        time = Clock::now() - start;
        order += 'c';
    });
    const auto second = timers.after(0s, [&] { order += 'b'; });
    const auto first = timers.after(-1h, [&] { order += 'a'; });
    const auto never = timers.after(std::chrono::hours(24 * 365 * 300), [&] { order += 'x'; });
    EXPECT_EQ(order, "");
    EXPECT_TRUE(loop.runUntil([&] { return time.has_value(); }));
    EXPECT_TRUE(order == "abc" || order == "bac") << order;
    EXPECT_GE(*time, 50ms);
}

TEST(TimersTests, aTaskEndsWithItsHandleWhichMayGoInTheTaskOrAfterTheTimers) {
    std::optional<QtTimers> timers(std::in_place);
    test::LoopWatch loop;
    int calls = 0;
    Subscription repeated;
    std::function<void()> task = [&] {
        if (++calls < 3) repeated = timers->after(0s, task);
    };
    repeated = timers->after(0s, task);
    {
        const auto ended = timers->after(0s, [&] { calls += 100; });
    }
    EXPECT_TRUE(loop.runUntil([&] { return calls >= 3; }));
    const auto kept = timers->after(0s, [&] { calls += 100; });
    timers.reset();
    loop.runFor(50ms);
    EXPECT_EQ(calls, 3);
}

} // namespace
} // namespace tavik
