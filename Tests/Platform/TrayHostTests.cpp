#include "Platform/Linux/DBus/StatusNotifierHost.h"
#include "Platform/Linux/X11/XEmbedTrayHost.h"
#include "Platform/Support/BusTests.h"

#include <QByteArray>

namespace tavik {
namespace {

using test::BackgroundProgram;
using test::Daemon;

constexpr auto watcherName = "org.kde.StatusNotifierWatcher";

class StatusNotifierHostTests : public test::BusTests {
protected:
    using Presence = TrayHost::Presence;

    void letGo() override { host.reset(); }

    void make() { host.emplace(open(), queue); }

    bool becomes(Presence presence) {
        return runUntil([&] { return host->presence().value() == presence; });
    }

    bool staysUnknown() {
        runForAWhile();
        return host->presence().value() == Presence::unknown;
    }

    /// A watcher without a panel, as it may be while the desktop starts.
    test::PrivateBus::Program startEmptyWatcher() {
        return apart([&] {
            auto mock = bus.startMock(watcherName, "/StatusNotifierWatcher", watcherName);
            tell("org.freedesktop.DBus.Mock.AddProperty",
                 {watcherName, "IsStatusNotifierHostRegistered", "<false>"});
            return mock;
        });
    }

    void change(bool isRegistered) {
        apart([&] {
            tell("org.freedesktop.DBus.Properties.Set",
                 {watcherName, "IsStatusNotifierHostRegistered",
                  isRegistered ? "<true>" : "<false>"});
            tell("org.freedesktop.DBus.Mock.EmitSignal",
                 {watcherName,
                  isRegistered ? "StatusNotifierHostRegistered" : "StatusNotifierHostUnregistered",
                  "", "@av []"});
        });
    }

    void tell(const std::string& method, const std::vector<std::string>& arguments) {
        bus.tell(watcherName, "/StatusNotifierWatcher", method, arguments);
    }

    std::optional<StatusNotifierHost> host;
};

TEST_F(StatusNotifierHostTests, aWatcherIsNoticedFromTheStartAndLateAndWhenItGoes) {
    auto watcher = startDaemon({"tray-watcher"});
    make();
    EXPECT_EQ(host->presence().value(), Presence::unknown);
    EXPECT_TRUE(becomes(Presence::present));
    end(watcher);
    EXPECT_TRUE(becomes(Presence::absent));
    watcher = startDaemon({"tray-watcher"});
    EXPECT_TRUE(becomes(Presence::present));
    apart([&] { bus.end(); });
    EXPECT_TRUE(becomes(Presence::absent));
    make();
    EXPECT_TRUE(becomes(Presence::absent)) << "there is no bus";
}

TEST_F(StatusNotifierHostTests, aWatcherCountsOnlyWhileItHasAPanel) {
    const auto watcher = startEmptyWatcher();
    make();
    EXPECT_TRUE(becomes(Presence::absent));
    change(true);
    EXPECT_TRUE(becomes(Presence::present));
    change(false);
    EXPECT_TRUE(becomes(Presence::absent));
}

TEST_F(StatusNotifierHostTests, aWatcherOrABusThatDoesNotAnswerLeavesItUnknown) {
    make();
    EXPECT_TRUE(becomes(Presence::absent));
    {
        const auto watcher = startDaemon({"tray-watcher"});
        EXPECT_TRUE(becomes(Presence::present));
        host.reset();
        watcher->signal(SIGSTOP);
        make();
        EXPECT_TRUE(staysUnknown());
        watcher->signal(SIGCONT);
        EXPECT_TRUE(becomes(Presence::present));
    }
    host.reset();
    bus.signal(SIGSTOP);
    make();
    EXPECT_TRUE(staysUnknown());
}

class XEmbedTrayHostTests : public testing::Test {
protected:
    static bool isPresent(const XEmbedTrayHost& host) {
        return host.presence().value() == TrayHost::Presence::present;
    }

    static bool becomes(const XEmbedTrayHost& host, bool wanted) {
        test::LoopWatch watch;
        const bool done = watch.runUntil([&] { return isPresent(host) == wanted; });
        EXPECT_LT(watch.longestGap(), test::atOnce);
        return done;
    }
};

TEST_F(XEmbedTrayHostTests, aTrayIsNoticedFromTheStartAndLateAndWhenItGoes) {
    std::optional<Daemon> tray(std::in_place, std::vector<std::string>{"tray-trayer"});
    const XEmbedTrayHost host;
    EXPECT_TRUE(isPresent(host));
    tray.reset();
    EXPECT_TRUE(becomes(host, false));
    EXPECT_FALSE(isPresent(XEmbedTrayHost()));
    tray.emplace(std::vector<std::string>{"tray-tint2"});
    EXPECT_TRUE(becomes(host, true));
    tray->signal(SIGSTOP);
    EXPECT_TRUE(isPresent(XEmbedTrayHost()));
}

TEST_F(XEmbedTrayHostTests, anXServerThatEndsOrIsNotThereHasNoTray) {
    const test::TemporaryDirectory folder;
    const QByteArray usual = qgetenv("DISPLAY");
    std::optional<BackgroundProgram> server(
        std::in_place,
        std::vector<std::string>{"/bin/sh", "-c",
                                 "exec Xvfb -displayfd 1 -nolisten tcp -noreset 2>/dev/null"},
        folder.file("display"));
    std::string display = test::awaitText("\n", folder.file("display"));
    display.pop_back();
    qputenv("DISPLAY", (":" + display).c_str());
    std::optional<BackgroundProgram> tray(std::in_place, std::vector<std::string>{"trayer"});
    const XEmbedTrayHost host;
    EXPECT_TRUE(becomes(host, true));
    server.reset();
    EXPECT_TRUE(becomes(host, false));
    EXPECT_FALSE(isPresent(XEmbedTrayHost()));
    qputenv("DISPLAY", usual);
}

} // namespace
} // namespace tavik
