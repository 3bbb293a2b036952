#include "Platform/Support/Daemon.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tavik {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test::BackgroundProgram;
using testing::HasSubstr;
using testing::Not;
using namespace std::chrono_literals;

/// "tavik --capture-probe" on a desktop with real applications.
class CaptureProbeProgramTests : public testing::Test {
protected:
    void SetUp() override {
        if (!test::areInstalled({"mousepad", "xterm", "xdotool"}))
            GTEST_SKIP() << "this takes mousepad, xterm and xdotool";
    }

    void TearDown() override { turnAccessibility(isOnBefore); }

    std::vector<std::string> command(const std::string& option = "") const {
        std::vector<std::string> words{"/usr/bin/env", "TAVIK_DATA_DIR=" + folder.file("data"),
                                       "XDG_CONFIG_HOME=" + folder.file("settings"), TAVIK_PROGRAM,
                                       "--capture-probe"};
        if (!option.empty()) words.push_back(option);
        return words;
    }

    json probed() const {
        const auto result = test::runProcess(command("--json"));
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        return json::parse(result.output, nullptr, false);
    }

    static json recordOf(const json& document, pid_t process) {
        for (const json& record : document["applications"])
            if (record["processIdentifier"] == process) return record;
        return {};
    }

    static std::string told(const std::vector<std::string>& command) {
        return test::runProcess(command).output;
    }

    /// Once it is there, brings the window to the front.
    static bool activate(const std::string& title) {
        return soon([&] {
            told(
                {"/usr/bin/xdotool", "search", "--onlyvisible", "--name", title, "windowactivate"});
            return inFront().find(title) != std::string::npos;
        });
    }

    static std::string inFront() {
        return told({"/usr/bin/xdotool", "getactivewindow", "getwindowname"});
    }

    static void press(const std::string& keys) { told({"/usr/bin/xdotool", "key", keys}); }

    static bool isAccessibilityOn() { return status("Get").find("true") != std::string::npos; }

    static void turnAccessibility(bool isOn) { status("Set", isOn ? "<true>" : "<false>"); }

    static bool soon(const std::function<bool()>& isSo) {
        for (int attempt = 0; attempt < 100; ++attempt) {
            if (isSo()) return true;
            std::this_thread::sleep_for(100ms);
        }
        return false;
    }

    test::TemporaryDirectory folder;

private:
    static std::string status(const std::string& method, const std::string& value = "") {
        std::vector<std::string> words{"/usr/bin/gdbus",
                                       "call",
                                       "--session",
                                       "-d",
                                       "org.a11y.Bus",
                                       "-o",
                                       "/org/a11y/bus",
                                       "-m",
                                       "org.freedesktop.DBus.Properties." + method,
                                       "org.a11y.Status",
                                       "IsEnabled"};
        if (!value.empty()) words.push_back(value);
        return told(words);
    }

    bool isOnBefore = isAccessibilityOn();
};

TEST_F(CaptureProbeProgramTests, everyProgramIsReadWhereItIsAndNothingIsDisturbed) {
    test::writeFile(folder.file("note.txt"), "The ephemeral cat sat. It slept.\n");
    const BackgroundProgram editor({"mousepad", folder.file("note.txt")});
    ASSERT_TRUE(activate("note.txt"));
    const auto selects = [&] {
        press("ctrl+Home");
        press("shift+ctrl+Right");
        return recordOf(probed(), editor.id())["hasSelection"] == true;
    };
    ASSERT_TRUE(soon(selects));
    const BackgroundProgram terminal({"xterm", "-T", "trial", "-e", "sleep 60"});
    ASSERT_TRUE(activate("trial"));
    const json document = probed();
    EXPECT_EQ(document["accessibility"], "on");
    const json text = recordOf(document, editor.id());
    EXPECT_EQ(text["reader"], "ax-text") << document.dump(1);
    EXPECT_EQ(text["hasSentence"], true);
    EXPECT_EQ(text["selectedCharacters"], 3);
    EXPECT_EQ(text["advice"], "none");
    EXPECT_EQ(recordOf(document, terminal.id())["advice"], "useSelection");
    EXPECT_THAT(document.dump(), Not(HasSubstr("ephemeral")));
    EXPECT_THAT(inFront(), HasSubstr("trial"));
    editor.signal(SIGSTOP);
    const auto table = test::runProcess(command());
    EXPECT_THAT(table.output, HasSubstr("没有及时响应"));
    EXPECT_THAT(table.output, HasSubstr("共 2 个程序"));
    EXPECT_FALSE(fs::exists(folder.file("data")));
    EXPECT_FALSE(fs::exists(folder.file("settings")));
}

TEST_F(CaptureProbeProgramTests, accessibilityIsSwitchedOnForTheProbeOnly) {
    turnAccessibility(true);
    EXPECT_EQ(probed()["accessibility"], "on");
    EXPECT_TRUE(isAccessibilityOn());
    turnAccessibility(false);
    EXPECT_EQ(probed()["accessibility"], "borrowed");
    EXPECT_FALSE(isAccessibilityOn());
    for (const int number : {SIGINT, SIGTERM}) {
        BackgroundProgram interrupted(command());
        // It gives programs more time to register than passes here.
        while (!isAccessibilityOn() && !interrupted.exitCodeWithin(0ms)) {
        }
        interrupted.signal(number);
        EXPECT_EQ(interrupted.exitCodeWithin(10s), 130);
        EXPECT_FALSE(isAccessibilityOn());
    }
}

TEST_F(CaptureProbeProgramTests, withoutABusThereIsATableAndAReason) {
    auto alone = command();
    alone.insert(alone.begin() + 1, "DBUS_SESSION_BUS_ADDRESS=unix:path=" + folder.file("none"));
    const auto result = test::runProcess(alone);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("读取方式"));
    EXPECT_THAT(result.output, HasSubstr("连不上无障碍总线"));
}

} // namespace
} // namespace tavik
