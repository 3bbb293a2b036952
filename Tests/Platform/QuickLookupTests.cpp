#include "Platform/Support/ProgramTest.h"
#include "Vocabulary/VocabularyStore.h"

#include <gtest/gtest.h>

#include <optional>

namespace tavik {
namespace {

using test::BackgroundProgram;
using namespace std::chrono_literals;

constexpr auto quick = "Tavik 查词";
constexpr auto popup = "^Tavik 释义$";

class QuickLookupTests : public test::ProgramTest {
protected:
    /// The title of the window to which keys go.
    static std::string focusedWindow() {
        return test::runProcess({"/usr/bin/xdotool", "getwindowfocus", "getwindowname"}).output;
    }

    static bool hasKeyboard(const std::string& title) {
        return soon([&] { return focusedWindow() == title + '\n'; }, 3s);
    }

    static void type(const std::string& text) {
        test::runProcess({"/usr/bin/xdotool", "type", "--delay", "20", text});
    }
};

TEST_F(QuickLookupTests, whatIsTypedWhereNothingIsSelectedIsShownAndNoKeyGoesAstray) {
    writePreferences(R"({"onboardingDone": true})");
    const std::string keys = directory.file("keys");
    const BackgroundProgram target({TAVIK_COPY_TARGET}, keys);
    test::awaitText("ready", keys);
    BackgroundProgram program(command());
    ASSERT_TRUE(becomesReady());
    ASSERT_TRUE(soon([] {
        press("alt+d");
        return hasKeyboard(quick);
    }));
    const std::string before = test::readFile(keys);
    type("ephemeral");
    test::ScreenReader reader(program.id());
    EXPECT_TRUE(soon([&] {
        std::string words;
        for (const test::ShownControl& control : reader.window(quick))
            words += control.name + '|' + control.text + '\n';
        return words.find("|ephemeral\n") != std::string::npos;
    }));
    press("Return");
    ASSERT_TRUE(soon([] { return isWindowShown(popup); }));
    EXPECT_FALSE(isWindowShown(std::string("^") + quick + '$'));
    ASSERT_TRUE(hasKeyboard("Tavik 释义"));
    press("Return");
    const VocabularyStore book(data + "/tavik.sqlite");
    EXPECT_TRUE(soon([&] { return book.wordIDForLemma("ephemeral").has_value(); }));
    press("Escape");
    EXPECT_TRUE(soon([] { return !isWindowShown(popup); }));
    press("Shift_L");
    const auto since = [&] { return test::readFile(keys).substr(before.size()); };
    EXPECT_TRUE(soon([&] { return since().find("press Shift_L") != std::string::npos; }));
    EXPECT_EQ(since().find("press"), since().find("press Shift_L")) << since();
    program.signal(SIGTERM);
    EXPECT_EQ(program.exitCodeWithin(10s), 0);
}

} // namespace
} // namespace tavik
