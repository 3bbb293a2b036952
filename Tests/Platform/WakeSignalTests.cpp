#include "Platform/Linux/DBus/LogindWakeSignal.h"
#include "Platform/Support/BusTests.h"

namespace tavik {
namespace {

constexpr auto login = "org.freedesktop.login1";

class WakeSignalTests : public test::BusTests {
protected:
    void SetUp() override {
        wake.emplace(open(), queue);
        wake->setOnWake([this] { ++wakes; });
        BusTests::SetUp();
    }

    void letGo() override { wake.reset(); }

    void prepareForSleep(const std::string& isGoing) {
        apart([&] {
            bus.tell(login, "/org/freedesktop/login1", "org.freedesktop.DBus.Mock.EmitSignal",
                     {"org.freedesktop.login1.Manager", "PrepareForSleep", "b", isGoing});
        });
    }

    bool wokeUp(int times) {
        return runUntil([&] { return wakes >= times; }) && wakes == times;
    }

    std::optional<LogindWakeSignal> wake;
    int wakes = 0;
};

TEST_F(WakeSignalTests, everyWakeIsToldAndNoSleepAlsoByAServiceThatWasStartedAnew) {
    auto logind = startDaemon({"logind"});
    prepareForSleep("[<true>]");
    prepareForSleep("[<false>]");
    EXPECT_TRUE(wokeUp(1));
    end(logind);
    logind = startDaemon({"logind"});
    prepareForSleep("[<true>]");
    prepareForSleep("[<false>]");
    EXPECT_TRUE(wokeUp(2));
    wake->setOnWake([this] { wake->setOnWake({}); });
    prepareForSleep("[<false>]");
    prepareForSleep("[<false>]");
    runForAWhile();
    EXPECT_EQ(wakes, 2);
}

TEST_F(WakeSignalTests, aBusThatHangsOrEndsTellsNothing) {
    runForAWhile();
    bus.signal(SIGSTOP);
    const LogindWakeSignal hung(open(), queue);
    runForAWhile();
    bus.signal(SIGCONT);
    apart([&] { bus.end(); });
    runForAWhile();
    EXPECT_EQ(wakes, 0);
}

} // namespace
} // namespace tavik
