#include "Platform/Support/NotificationClicks.h"
#include "Platform/Support/ProgramTest.h"
#include "Storage/SQLiteDB.h"

#include <gmock/gmock.h>

#include <csignal>
#include <ctime>
#include <filesystem>
#include <optional>
#include <sstream>
#include <thread>

namespace tavik {
namespace {

using test::BackgroundProgram;
using test::Daemon;
using testing::HasSubstr;
using namespace std::chrono_literals;

/// With the services that users run, while the user works in another application.
class ReminderAnswerTests : public test::ProgramTest,
                            public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        test::awaitText("ready", keys);
        ASSERT_TRUE(becomesActive("copy-target"));
        save("ephemeral");
    }

    void workElsewhere() {
        test::runProcess(
            {"/usr/bin/xdotool", "search", "--name", "^copy-target$", "windowactivate"});
        ASSERT_TRUE(becomesActive("copy-target"));
        press("a");
        test::awaitText("press a", keys);
    }

    void expectAnswerOpensReview() {
        ASSERT_TRUE(test::clickNotificationButton(GetParam(), "开始复习"));
        EXPECT_TRUE(becomesActive("Tavik · 今日复习")) << activeWindow();
    }

    static void end(BackgroundProgram& program) {
        program.signal(SIGTERM);
        EXPECT_EQ(program.exitCodeWithin(10s), 0);
    }

    const Daemon service{{GetParam()}};
    const std::string keys = directory.file("keys");
    const BackgroundProgram target{{TAVIK_COPY_TARGET}, keys};
};

INSTANTIATE_TEST_SUITE_P(
    , ReminderAnswerTests, testing::Values("notifications-dunst", "notifications-xfce"),
    [](const auto& daemon) {
        return std::string(daemon.param).substr(std::string("notifications-").size());
    });

TEST_P(ReminderAnswerTests, anAnswerOpensTheReviewInFrontOfWhereTheUserWorks) {
    writePreferences(R"({"onboardingDone": true})");
    BackgroundProgram program(command());
    ASSERT_TRUE(becomesReady());
    ASSERT_EQ(startToEnd().exitCode, 0) << "a second start shows the window";
    test::ScreenReader reader(program.id());
    ASSERT_TRUE(pressButton(reader, "Tavik", "设置…"));
    ASSERT_TRUE(becomesActive("Tavik 设置"));
    ASSERT_TRUE(pressButton(reader, "Tavik 设置", "发送测试通知"));
    ASSERT_NO_FATAL_FAILURE(workElsewhere());
    expectAnswerOpensReview();
    end(program);
}

TEST_P(ReminderAnswerTests, oneThatWasMissedIsShownAtTheStartAndAnsweredWithoutAnyWindow) {
    writePreferences(R"({"onboardingDone": true, "remindedUntil": 1750000000})");
    SQLiteDB(data + "/tavik.sqlite", false).execute("UPDATE card SET due = due - 864000");
    BackgroundProgram program(command());
    ASSERT_TRUE(becomesReady());
    ASSERT_NO_FATAL_FAILURE(workElsewhere());
    expectAnswerOpensReview();
    end(program);
}

/// With a service that writes down what it is to show. These wait for the clock.
class ReminderTimeTests : public test::ProgramTest {
protected:
    using Clock = std::chrono::system_clock;

    /// The next full minute that leaves the program the time to start.
    static Clock::time_point nextMinute() {
        return std::chrono::ceil<std::chrono::minutes>(Clock::now() + 10s);
    }

    void remindAt(Clock::time_point time) const {
        const std::time_t seconds = Clock::to_time_t(time);
        std::tm local{};
        localtime_r(&seconds, &local);
        writePreferences(R"({"onboardingDone": true, "reminderHour": )"
                         + std::to_string(local.tm_hour) + R"(, "reminderMinute": )"
                         + std::to_string(local.tm_min) + "}");
    }

    std::vector<std::string> serviceCommand() const {
        return {"/usr/bin/python3",    "-m",        "dbusmock", "--session", "--template",
                "notification_daemon", "--logfile", log};
    }

    /// The lines about notifications, each after its time in seconds.
    std::vector<std::string> notifications() const {
        std::vector<std::string> lines;
        std::istringstream all(std::filesystem::exists(log) ? test::readFile(log) : "");
        for (std::string line; std::getline(all, line);)
            if (line.find(" Notify ") != std::string::npos) lines.push_back(line);
        return lines;
    }

    void start() {
        program.emplace(command());
        ASSERT_TRUE(becomesReady());
    }

    void quit() {
        program->signal(SIGTERM);
        ASSERT_EQ(program->exitCodeWithin(10s), 0);
        ASSERT_TRUE(soon([] { return toolTip().empty(); }));
    }

    static bool becomesToolTip(const std::string& text, std::chrono::seconds patience) {
        return soon([&] { return toolTip() == text; }, patience);
    }

    std::string log = directory.file("log");
    std::optional<BackgroundProgram> program;
};

TEST_F(ReminderTimeTests, theReminderComesOnceAtItsMinuteAndTheTrayFollowsTheBook) {
    const BackgroundProgram service(serviceCommand());
    const auto waited = test::runProcess(
        {TAVIK_DESKTOP_TOOLS "/wait-for", "bus-name", "org.freedesktop.Notifications"});
    ASSERT_EQ(waited.exitCode, 0) << waited.errors;
    const Daemon panel({"tray-watcher"});
    save("ephemeral");
    const auto fireTime = nextMinute();
    remindAt(fireTime);
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_TRUE(becomesToolTip("Tavik：1 个生词待复习", 15s));
    save("gregarious");
    const bool isSavedBefore = Clock::now() < fireTime;
    EXPECT_TRUE(becomesToolTip("Tavik：2 个生词待复习", 65s));
    EXPECT_TRUE(soon([this] { return !notifications().empty(); }, 75s));
    ASSERT_NO_FATAL_FAILURE(quit());
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_TRUE(becomesToolTip("Tavik：2 个生词待复习", 15s));
    // Time in which what must not happen would have happened.
    std::this_thread::sleep_for(5s);
    const auto shown = notifications();
    ASSERT_EQ(shown.size(), 1U);
    const std::string count = isSavedBefore ? "2" : "";
    EXPECT_THAT(shown.front(), HasSubstr("\"Tavik 生词复习\" \"今天有 " + count));
    EXPECT_THAT(shown.front(), HasSubstr(" 个生词该复习了，大约 1 分钟。\""));
    const std::chrono::duration<double> late =
        std::chrono::duration<double>(std::stod(shown.front())) - fireTime.time_since_epoch();
    EXPECT_GE(late, 0s);
    EXPECT_LE(late, 60s);
    ASSERT_NO_FATAL_FAILURE(quit());
}

} // namespace
} // namespace tavik
