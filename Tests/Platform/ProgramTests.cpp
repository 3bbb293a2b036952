#include "Platform/Support/ProgramTest.h"
#include "Support/Book.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <thread>

namespace tavik {
namespace {

namespace fs = std::filesystem;
using test::BackgroundProgram;
using test::Daemon;
using testing::HasSubstr;
using namespace std::chrono_literals;

class ProgramTests : public test::ProgramTest {
protected:
    static void pressEscape() {
        std::this_thread::sleep_for(300ms);
        press("Escape");
    }

    /// The title of the window that gets the keys, whether the window manager knows it or not.
    static std::string focusedWindow() {
        return test::runProcess({"/usr/bin/xdotool", "getwindowfocus", "getwindowname"}).output;
    }
};

TEST_F(ProgramTests, aPanelThatStartsLaterGetsTheIconWithItsMenu) {
    fs::create_directories(data);
    VocabularyStore book(data + "/tavik.sqlite");
    test::addWord(book, "one");
    BackgroundProgram program(command());
    std::this_thread::sleep_for(500ms);
    const Daemon panel({"tray-watcher"});
    ASSERT_TRUE(soon([] { return toolTip() == "Tavik：1 个生词待复习"; }));
    EXPECT_THAT(tray("'menu'").dump(), HasSubstr("退出 Tavik"));
    tray("'click', '退出 Tavik'");
    EXPECT_EQ(program.exitCodeWithin(5s), 0);
}

TEST_F(ProgramTests, aSecondStartShowsTheFirstAndEndsAndOtherDataHaveAProgramOfTheirOwn) {
    BackgroundProgram first(command());
    ASSERT_TRUE(becomesReady());
    EXPECT_FALSE(isWindowShown("^Tavik$"));
    EXPECT_EQ(startToEnd().exitCode, 0);
    EXPECT_TRUE(soon([] { return isWindowShown("^Tavik$"); }));
    data = directory.file(std::string(150, 'x'));
    BackgroundProgram other(command());
    EXPECT_TRUE(becomesReady());
    EXPECT_EQ(first.exitCodeWithin(0ms), std::nullopt);
    other.signal(SIGTERM);
    EXPECT_EQ(other.exitCodeWithin(5s), 0);
    EXPECT_FALSE(fs::exists(data + "/tavik.socket"));
}

TEST_F(ProgramTests, aKilledProgramStandsInNobodysWayAndAStoppedOneIsNotWaitedForLong) {
    const fs::path socket = data + "/tavik.socket";
    {
        BackgroundProgram killed(command());
        ASSERT_TRUE(soon([&] { return fs::exists(socket); }));
        killed.signal(SIGKILL);
        EXPECT_EQ(killed.exitCodeWithin(5s), 128 + SIGKILL);
    }
    const auto before = fs::last_write_time(socket);
    const BackgroundProgram stopped(command());
    ASSERT_TRUE(soon([&] { return fs::exists(socket) && fs::last_write_time(socket) != before; }));
    stopped.signal(SIGSTOP);
    BackgroundProgram refused(command());
    EXPECT_TRUE(soon([] { return isWindowShown("^Tavik$"); }));
    pressEscape();
    EXPECT_EQ(refused.exitCodeWithin(5s), 4);
}

TEST_F(ProgramTests, theHotKeyShowsTheWordEnterSavesItAndTheKeyboardComesBack) {
    writePreferences(R"({"onboardingDone": true})");
    const std::string keys = directory.file("keys");
    const BackgroundProgram target({TAVIK_COPY_TARGET, "text=ephemeral"}, keys);
    test::awaitText("ready", keys);
    BackgroundProgram program(command());
    ASSERT_TRUE(becomesReady());
    const auto isPopupShown = [] { return isWindowShown("^Tavik 释义$"); };
    std::this_thread::sleep_for(500ms);
    press("alt+d");
    ASSERT_TRUE(soon([] { return focusedWindow() == "Tavik 释义\n"; }));
    const std::string before = test::readFile(keys);
    press("Return");
    const VocabularyStore book(data + "/tavik.sqlite");
    EXPECT_TRUE(soon([&] { return book.wordIDForLemma("ephemeral").has_value(); }));
    press("Escape");
    EXPECT_TRUE(soon([&] { return !isPopupShown(); }));
    press("Shift_L");
    const auto since = [&] { return test::readFile(keys).substr(before.size()); };
    EXPECT_TRUE(soon([&] { return since().find("press Shift_L") != std::string::npos; }));
    EXPECT_EQ(since().find("press"), since().find("press Shift_L")) << "a key for the popup";
    program.signal(SIGTERM);
    EXPECT_EQ(program.exitCodeWithin(5s), 0);
}

TEST_F(ProgramTests, aHungWatcherBesideATrayHoldsNothingUp) {
    const Daemon tray({"tray-trayer"});
    const Daemon watcher({"name-hung", "org.kde.StatusNotifierWatcher"});
    BackgroundProgram program(command());
    ASSERT_TRUE(becomesReady());
    EXPECT_EQ(startToEnd().exitCode, 0);
    EXPECT_TRUE(soon([] { return isWindowShown("^Tavik$"); }));
    program.signal(SIGTERM);
    EXPECT_EQ(program.exitCodeWithin(5s), 0);
}

TEST_F(ProgramTests, aDiagnosticRunLeavesTheUsersDataAndSettingsAlone) {
    EXPECT_EQ(startToEnd({"--snapshot"}).exitCode, 3);
    EXPECT_EQ(startToEnd({"--capture-probe"}).exitCode, 0);
    EXPECT_FALSE(fs::exists(data));
    EXPECT_FALSE(fs::exists(settings));
    const fs::path temporary = fs::temp_directory_path();
    for (const auto& file : fs::directory_iterator(temporary))
        EXPECT_THAT(file.path().filename().string(), Not(HasSubstr("tavik-snapshot-")));
    BackgroundProgram normal(command({"--snapshots"}));
    EXPECT_TRUE(soon([this] { return fs::exists(data + "/tavik.sqlite"); }));
}

TEST_F(ProgramTests, aBookThatCannotBeOpenedIsShownAndEndsTheProgramWhenThatIsClosed) {
    fs::create_directories(data + "/tavik.sqlite");
    BackgroundProgram program(command());
    ASSERT_TRUE(soon([] { return isWindowShown("^Tavik$"); }));
    EXPECT_EQ(startToEnd().exitCode, 0) << "the message was brought to the front";
    pressEscape();
    EXPECT_EQ(program.exitCodeWithin(5s), 2);
    BackgroundProgram again(command());
    ASSERT_TRUE(soon([] { return isWindowShown("^Tavik$"); }));
    again.signal(SIGTERM);
    EXPECT_EQ(again.exitCodeWithin(5s), 2);
}

TEST_F(ProgramTests, withoutADesktopItSaysSoAndHelpIsChinese) {
    auto without = command();
    without.insert(without.begin() + 1, {"-u", "DISPLAY"});
    const auto refused = test::runProcess(without);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.errors, HasSubstr("连不上图形界面"));
    const auto help = startToEnd({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.output, HasSubstr("用法：tavik"));
}

} // namespace
} // namespace tavik
