#include "Platform/Support/BusTests.h"

#include <QByteArray>
#include <algorithm>
#include <atomic>

namespace tavik {
namespace {

using namespace std::chrono_literals;

class BusConnectionTests : public test::BusTests {
protected:
    /// Whether a bus was found at the address; no value while that is not known.
    std::optional<bool> readiness(const std::string& address) {
        connection = BusConnection::open(*thread, address);
        auto known = std::make_shared<std::optional<bool>>();
        connection->whenReady([this, known](bool isConnected) {
            queue.post([known, isConnected] { *known = isConnected; });
        });
        watch.runUntil([&] { return known->has_value(); }, 300ms);
        return *known;
    }
};

TEST_F(BusConnectionTests, tasksRunInTheirOrderAndThoseThatWaitAtTheEndStillDo) {
    std::vector<int> seen;
    for (int number = 0; number < 1000; ++number)
        thread->run([&seen, number] { seen.push_back(number); });
    BusThread& running = *thread;
    running.run([&] { running.run([&] { seen.push_back(1000); }); });
    thread.reset();
    ASSERT_EQ(seen.size(), 1001U);
    EXPECT_TRUE(std::ranges::is_sorted(seen));
}

TEST_F(BusConnectionTests, noBusIsToldAtOnce) {
    EXPECT_EQ(readiness(""), false);
    EXPECT_EQ(readiness("unix:path=" + bus.file("nobody")), false);
    EXPECT_EQ(readiness("this is no address"), false);
    EXPECT_EQ(readiness("unix:path=" + bus.file("nobody") + ";" + bus.address()), true);
}

TEST_F(BusConnectionTests, anAddressNeverStartsAProgram) {
    const std::string trace = bus.file("trace");
    EXPECT_EQ(readiness("unixexec:path=/usr/bin/touch,argv1=" + trace), false);
    EXPECT_EQ(readiness("autolaunch:"), false);
    EXPECT_FALSE(std::filesystem::exists(trace));
}

TEST_F(BusConnectionTests, aBusThatAcceptsAndNeverAnswersHoldsNothingUpAndMayComeToLife) {
    bus.signal(SIGSTOP);
    EXPECT_EQ(readiness(bus.address()), std::nullopt);
    EXPECT_EQ(readiness(bus.address()), std::nullopt); // The first one was let go meanwhile.
    std::atomic<bool> isConnected = false;
    connection->whenReady([&](bool connected) { isConnected = connected; });
    bus.signal(SIGCONT);
    EXPECT_TRUE(runUntil([&] { return isConnected.load(); }));
}

TEST_F(BusConnectionTests, aBusThatStaysHungIsLeftWithoutWaiting) {
    bus.signal(SIGSTOP);
    EXPECT_EQ(readiness(bus.address()), std::nullopt);
}

TEST_F(BusConnectionTests, aCallEndsWithItsAnswerOrItsTimeOrTheProgramOrTheBus) {
    const BusObject object{"com.example.Hung", "/", "com.example.Hung"};
    auto hung = startDaemon({"name-hung", object.name});
    open();
    std::vector<std::string> ended;
    const auto call = [&](const std::string& what, const BusObject& callee, const char* method,
                          BusConnection::CallOptions options) {
        connection->whenReady([this, &ended, what, callee, method, options](bool) {
            connection->call(callee, method, {}, options, [&, what](const VariantHandle& answer) {
                queue.post([&ended, what = what + (answer ? " answer" : " none")] {
                    ended.push_back(what);
                });
            });
        });
    };
    const BusObject self{"org.freedesktop.DBus", "/", "org.freedesktop.DBus"};
    const auto nextEnd = [&] {
        ended.clear();
        runUntil([&] { return !ended.empty(); });
        return ended;
    };
    call("bus", self, "GetId", {.answerType = "(s)"});
    EXPECT_EQ(nextEnd(), std::vector<std::string>{"bus answer"});
    call("other type", self, "GetId", {.answerType = "(u)"});
    EXPECT_EQ(nextEnd(), std::vector<std::string>{"other type none"});
    call("time", object, "Do", {.timeout = 100ms});
    EXPECT_EQ(nextEnd(), std::vector<std::string>{"time none"});
    call("program", object, "Do", {});
    runForAWhile();
    end(hung);
    EXPECT_EQ(nextEnd(), std::vector<std::string>{"program none"});
    call("bus", self, "GetId", {.answerType = "(s)"});
    EXPECT_EQ(nextEnd(), std::vector<std::string>{"bus answer"});
    apart([&] { bus.end(); });
    call("no bus", self, "GetId", {.answerType = "(s)"});
    EXPECT_EQ(nextEnd(), std::vector<std::string>{"no bus none"});
}

TEST_F(BusConnectionTests, callsThatAreUnderWayAtTheEndAreGivenUp) {
    const BusObject object{"com.example.Hung", "/", "com.example.Hung"};
    const auto hung = startDaemon({"name-hung", object.name});
    open();
    std::atomic<bool> isCalled = false;
    std::atomic<bool> isAnswered = false;
    connection->whenReady([&](bool) {
        for (int count = 0; count < 100; ++count)
            connection->call(object, "Do", {}, {},
                             [&](const VariantHandle&) { isAnswered = true; });
        isCalled = true;
    });
    EXPECT_TRUE(runUntil([&] { return isCalled.load(); }));
    connection.reset();
    thread.reset();
    EXPECT_FALSE(isAnswered);
}

TEST_F(BusConnectionTests, theAddressOfTheSessionBusIsFoundWithoutStartingOne) {
    const std::string known = qgetenv("DBUS_SESSION_BUS_ADDRESS").toStdString();
    const std::string directory = qgetenv("XDG_RUNTIME_DIR").toStdString();
    EXPECT_EQ(sessionBusAddress(), known);
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    EXPECT_EQ(sessionBusAddress(), "unix:path=" + directory + "/bus");
    qputenv("XDG_RUNTIME_DIR", "/nowhere");
    EXPECT_EQ(sessionBusAddress(), "");
    qputenv("XDG_RUNTIME_DIR", directory.c_str());
    qputenv("DBUS_SESSION_BUS_ADDRESS", known.c_str());
}

} // namespace
} // namespace tavik
