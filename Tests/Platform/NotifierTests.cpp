#include "Platform/Linux/DBus/DesktopNotifier.h"
#include "Platform/Support/BusTests.h"

#include <gmock/gmock.h>

namespace tavik {
namespace {

using testing::HasSubstr;

constexpr auto serviceName = "org.freedesktop.Notifications";

class NotifierTests : public test::BusTests {
protected:
    void letGo() override { notifier.reset(); }

    void make() { notifier.emplace(open()); }

    /// A service that writes each call into a file.
    test::PrivateBus::Program startRecorder(const std::string& capabilities) {
        return apart([&] {
            std::filesystem::remove(log);
            return bus.start({"/usr/bin/python3", "-m", "dbusmock", "--session", "--template",
                              "notification_daemon", "--logfile", log, "--parameters",
                              R"({"capabilities": ")" + capabilities + "\"}"},
                             serviceName);
        });
    }

    /// What the recorder has written once it knows of so many notifications.
    std::string recorded(std::size_t count) {
        std::string text;
        runUntil([&] {
            text = std::filesystem::exists(log) ? test::readFile(log) : "";
            return occurrences(text, " Notify ") >= count;
        });
        return text;
    }

    static std::size_t occurrences(const std::string& text, const std::string& part) {
        std::size_t count = 0;
        for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
            ++count;
        return count;
    }

    std::string log = bus.file("log");
    std::optional<DesktopNotifier> notifier;
};

TEST_F(NotifierTests, theBodyArrivesAsItIsWrittenWhetherTheServiceKnowsMarkupOrNot) {
    auto recorder = startRecorder("body body-markup");
    make();
    notifier->notify("<b>&", "<b>& 该复习了");
    notifier->notify("again", "a > b");
    const std::string withMarkup = recorded(2);
    EXPECT_THAT(withMarkup,
                HasSubstr(R"(Notify "Tavik" 0 "com.tavik.app" "<b>&" "&lt;b&gt;&amp; )"));
    EXPECT_THAT(withMarkup, HasSubstr(R"("a &gt; b" [] {"desktop-entry": "com.tavik.app"} -1)"));
    EXPECT_EQ(occurrences(withMarkup, "GetCapabilities"), 1U);
    end(recorder);
    recorder = startRecorder("body");
    notifier->notify("plain", "<b>&");
    EXPECT_THAT(recorded(1), HasSubstr(R"("plain" "<b>&" [])"));
}

TEST_F(NotifierTests, textOfAnyKindArrives) {
    const auto recorder = startRecorder("body");
    make();
    notifier->notify(std::string("a\xff\0b", 4), "");
    notifier->notify("last", "\x01");
    EXPECT_THAT(recorded(2), HasSubstr("\"a\xef\xbf\xbd\" \"\""));
}

TEST_F(NotifierTests, nothingIsShownWithoutAServiceAndAllOnceThereIsOne) {
    make();
    notifier->notify("lost", "");
    runForAWhile();
    auto hung = startDaemon({"name-hung", serviceName});
    notifier->notify("hung", "");
    runForAWhile();
    end(hung);
    const auto recorder = startRecorder("body");
    notifier->notify("shown", "");
    EXPECT_THAT(recorded(1), HasSubstr("\"shown\""));
}

TEST_F(NotifierTests, aHungBusOrServiceIsNotFelt) {
    const auto hung = startDaemon({"name-hung", serviceName});
    make();
    notifier->notify("hung", "");
    runForAWhile();
    notifier.reset();
    bus.signal(SIGSTOP);
    make();
    notifier->notify("hung", "");
    runForAWhile();
}

TEST_F(NotifierTests, aRealServiceShowsTheBodyAsItIsWritten) {
    const auto dunst = startDaemon({"notifications-dunst"});
    make();
    notifier->notify("Tavik 生词复习", "<b>& 3 个");
    const auto tellDunst = [&](const std::string& method) {
        return apart([&] {
            return bus.tell(serviceName, "/org/freedesktop/Notifications",
                            "org.dunstproject.cmd0." + method, {});
        });
    };
    std::string history;
    EXPECT_TRUE(runUntil([&] {
        tellDunst("NotificationCloseAll");
        history = tellDunst("NotificationListHistory");
        return history.find("Tavik 生词复习") != std::string::npos;
    }));
    EXPECT_THAT(history, HasSubstr("'body': <'&lt;b&gt;&amp; 3 个'>"));
}

} // namespace
} // namespace tavik
