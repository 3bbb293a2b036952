#include "Platform/Linux/X11/X11Workspace.h"
#include "Platform/Support/Daemon.h"
#include "Platform/Support/XClient.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace tavik {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Numbers = std::vector<std::uint32_t>;

bool eventually(const std::function<bool()>& isSo) {
    for (const auto end = Clock::now() + 10s; Clock::now() < end;) {
        if (isSo()) return true;
        std::this_thread::sleep_for(5ms);
    }
    return false;
}

std::ptrdiff_t countLines(const std::string& file, const std::string& wanted) {
    std::istringstream text(test::readFile(file));
    std::ptrdiff_t count = 0;
    for (std::string line; std::getline(text, line);)
        count += line.starts_with(wanted) ? 1 : 0;
    return count;
}

/// The program of Platform/Support/PopupMain.cpp.
class Popups {
public:
    explicit Popups(const std::string& platform = "xcb") {
        const std::string commandFile = folder.file("commands");
        if (mkfifo(commandFile.c_str(), 0600) != 0) throw std::runtime_error("no pipe");
        program.emplace(std::vector<std::string>{"/bin/sh", "-c",
                                                 R"(exec "$0" -platform "$1" < "$2")",
                                                 TAVIK_TEST_POPUP, platform, commandFile},
                        output());
        commands.open(commandFile);
    }

    /// What it answers to a command.
    std::string ask(const std::string& command) {
        commands << command << std::endl;
        const std::string number = std::to_string(++commandCount) + ' ';
        std::string line;
        const bool isAnswered = eventually([&] {
            line = "\n" + test::readFile(output());
            const auto begin = line.find("\n" + number);
            return begin != std::string::npos && line.find('\n', begin + 1) != std::string::npos;
        });
        if (!isAnswered) throw std::runtime_error("no answer to " + command);
        const auto begin = line.find("\n" + number) + 1 + number.size();
        return line.substr(begin, line.find('\n', begin) - begin);
    }

    /// Shows a window: its number for the server.
    xcb_window_t show(const std::string& place = "500 300 200 100") {
        return static_cast<xcb_window_t>(std::stoul(ask("show " + place)));
    }

    std::string output() const { return folder.file("output"); }

    std::ptrdiff_t keys(const std::string& key) const { return countLines(output(), "key " + key); }

private:
    test::TemporaryDirectory folder;
    std::optional<test::BackgroundProgram> program;
    std::ofstream commands;
    int commandCount = 0;
};

/// An X server without a window manager, which $DISPLAY names until the object goes.
class BareServer {
public:
    BareServer() : usual(qgetenv("DISPLAY")) {
        server.emplace(
            std::vector<std::string>{
                "/bin/sh", "-c",
                "exec Xvfb -displayfd 1 -nolisten tcp -noreset -screen 0 800x600x24 2>/dev/null"},
            folder.file("display"));
        std::string number = test::awaitText("\n", folder.file("display"));
        number.pop_back();
        qputenv("DISPLAY", (":" + number).c_str());
    }

    ~BareServer() { qputenv("DISPLAY", usual); }

    BareServer(const BareServer&) = delete;
    BareServer& operator=(const BareServer&) = delete;

private:
    test::TemporaryDirectory folder;
    QByteArray usual;
    std::optional<test::BackgroundProgram> server;
};

class WindowSystemTests : public testing::Test {
protected:
    /// A window of another program.
    xcb_window_t addWindow(std::int16_t x, std::int16_t y, bool isSeen = true) {
        const xcb_window_t window = xcb_generate_id(user.connection());
        const std::uint32_t events = XCB_EVENT_MASK_BUTTON_PRESS;
        xcb_create_window(user.connection(), XCB_COPY_FROM_PARENT, window, user.root(), x, y, 300,
                          200, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_EVENT_MASK, &events);
        if (isSeen) xcb_map_window(user.connection(), window);
        user.sync();
        return window;
    }

    void setNumbers(xcb_window_t window, const std::string& name, const std::string& type,
                    const Numbers& numbers) {
        xcb_change_property(user.connection(), XCB_PROP_MODE_REPLACE, window, user.atom(name),
                            user.atom(type), 32, static_cast<std::uint32_t>(numbers.size()),
                            numbers.data());
        user.sync();
    }

    void setFocus(xcb_window_t window) const {
        xcb_set_input_focus(user.connection(), XCB_INPUT_FOCUS_POINTER_ROOT, window,
                            XCB_CURRENT_TIME);
        user.sync();
    }

    BareServer server;
    test::XClient user;
    Popups popups;
    /// How many windows of ours there have been.
    int shown = 0;
};

TEST_F(WindowSystemTests, theKeyboardGoesBackToWhomeverItWasTakenFrom) {
    const xcb_window_t popup = popups.show();
    for (const xcb_window_t former :
         {addWindow(0, 0), xcb_window_t{XCB_NONE}, xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT}}) {
        setFocus(former);
        const xcb_window_t again = popups.show();
        EXPECT_EQ(user.focus(), former) << "shown without it";
        const std::string number = std::to_string(++shown);
        popups.ask("take " + number);
        popups.ask("take " + number);
        EXPECT_EQ(user.focus(), again);
        popups.ask("take 0");
        EXPECT_EQ(user.focus(), popup);
        popups.ask("take " + number);
        popups.ask("hide " + number);
        EXPECT_EQ(user.focus(), former);
    }
}

TEST_F(WindowSystemTests, whoHasTakenTheKeyboardSinceKeepsIt) {
    setFocus(addWindow(0, 0));
    popups.show();
    popups.ask("take 0");
    const xcb_window_t other = addWindow(100, 100);
    setFocus(other);
    popups.ask("hide 0");
    EXPECT_EQ(user.focus(), other);
    popups.show();
    popups.ask("take 1");
    popups.ask("hide 1");
    EXPECT_EQ(user.focus(), other) << "and gets it back now";
}

TEST_F(WindowSystemTests, whereTheFormerWindowIsGoneTheActiveOneGetsTheKeyboard) {
    const xcb_window_t active = addWindow(0, 0);
    const xcb_window_t hidden = addWindow(0, 0, false);
    const auto focusAfterLossOf = [&](bool isDestroyed, xcb_window_t told) {
        setNumbers(user.root(), "_NET_ACTIVE_WINDOW", "WINDOW", {told});
        const xcb_window_t former = addWindow(100, 100);
        setFocus(former);
        popups.show();
        const std::string number = std::to_string(shown++);
        popups.ask("take " + number);
        if (isDestroyed)
            xcb_destroy_window(user.connection(), former);
        else
            xcb_unmap_window(user.connection(), former);
        user.sync();
        popups.ask("hide " + number);
        return user.focus();
    };
    EXPECT_EQ(focusAfterLossOf(true, active), active);
    EXPECT_EQ(focusAfterLossOf(false, active), active);
    EXPECT_EQ(focusAfterLossOf(true, hidden), xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT});
    EXPECT_EQ(focusAfterLossOf(false, XCB_NONE), xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT});
}

TEST_F(WindowSystemTests, aCompositorIsThereAsLongAsItOwnsItsSelection) {
    EXPECT_EQ(popups.ask("compositor"), "0");
    {
        test::XClient compositor;
        xcb_set_selection_owner(compositor.connection(), compositor.window(),
                                compositor.atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
        compositor.sync();
        EXPECT_EQ(popups.ask("compositor"), "1");
    }
    EXPECT_TRUE(eventually([&] { return popups.ask("compositor") == "0"; }));
}

TEST_F(WindowSystemTests, clicksBesideThePartGoToWhatLiesBelow) {
    addWindow(450, 250);
    popups.show("500 300 200 100");
    popups.ask("limit 0 20.5 10 100 50");
    const auto click = [&](std::int16_t x, std::int16_t y) {
        user.movePointer(x, y);
        user.clickButton();
    };
    click(519, 320);
    click(520, 310);
    click(620, 359);
    click(621, 359);
    click(560, 360);
    EXPECT_EQ(popups.ask("pointer"), "560,360");
    test::awaitText("click 620,359\n", popups.output());
    EXPECT_EQ(countLines(popups.output(), "click "), 2);
    std::vector<int> below;
    while (const auto event = user.nextEvent(100ms))
        if ((event->response_type & 0x7f) == XCB_BUTTON_PRESS)
            below.push_back(
                reinterpret_cast<const xcb_button_press_event_t&>(*event).root_x); // NOLINT
    EXPECT_THAT(below, testing::ElementsAre(519, 621, 560));
}

TEST_F(WindowSystemTests, whatIsVisibleOfAScreenIsWhatPanelsLeave) {
    EXPECT_EQ(popups.ask("screens"), "0,0,800,600 0,0,800,600 1;");
    setNumbers(user.root(), "_NET_CURRENT_DESKTOP", "CARDINAL", {1});
    setNumbers(user.root(), "_NET_WORKAREA", "CARDINAL", {0, 0, 800, 600, 0, 30, 800, 570});
    EXPECT_EQ(popups.ask("screens"), "0,0,800,600 0,30,800,570 1;");
    const xcb_window_t panel = addWindow(0, 560);
    const xcb_window_t older = addWindow(0, 0);
    setNumbers(panel, "_NET_WM_STRUT_PARTIAL", "CARDINAL", {0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 799});
    setNumbers(panel, "_NET_WM_STRUT", "CARDINAL", {0, 0, 0, 90});
    setNumbers(older, "_NET_WM_STRUT", "CARDINAL", {24, 0, 0, 0});
    setNumbers(user.root(), "_NET_CLIENT_LIST", "WINDOW", {0xffffffff, panel, older});
    EXPECT_EQ(popups.ask("screens"), "0,0,800,600 24,0,776,560 1;");
    setNumbers(panel, "_NET_WM_STRUT_PARTIAL", "WINDOW", {0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 799});
    EXPECT_EQ(popups.ask("screens"), "0,0,800,600 24,0,776,510 1;");
    setNumbers(user.root(), "_GTK_WORKAREAS_D1", "CARDINAL", {10, 0, 790, 600});
    EXPECT_EQ(popups.ask("screens"), "0,0,800,600 10,0,790,600 1;");
}

TEST(WindowSystemElsewhereTests, withoutAnXServerQtTellsWhatItKnows) {
    Popups popups("offscreen");
    EXPECT_EQ(popups.ask("screens"), "0,0,800,800 0,0,800,800 1;");
    EXPECT_EQ(popups.ask("compositor"), "1");
    popups.show();
    popups.ask("limit 0 0 0 10 10");
    popups.ask("take 0");
    popups.ask("hide 0");
    EXPECT_EQ(popups.ask("compositor"), "1") << "still there";
}

/// With the session's window manager, and an application in front.
class WindowSystemOnDesktopTests : public testing::Test {
protected:
    WindowSystemOnDesktopTests()
        : output(folder.file("output")), application({TAVIK_COPY_TARGET}, output) {
        test::awaitText("ready", output);
        X11Workspace workspace([](const auto&, const auto&) { return std::nullopt; });
        const bool isInFront = eventually([&] {
            const auto front = workspace.frontApplication();
            return front && front->processIdentifier == application.id()
                   && user.focus() == front->window;
        });
        if (!isInFront) throw std::runtime_error("the application does not come to the front");
    }

    void type(const std::string& key) const {
        user.pressKey(key);
        user.releaseKey(key);
    }

    /// In the application, by now.
    std::ptrdiff_t keys(const std::string& key) const { return countLines(output, "press " + key); }

    test::TemporaryDirectory folder;
    std::string output;
    test::BackgroundProgram application;
    test::XClient user;
    Popups popups;
};

TEST_F(WindowSystemOnDesktopTests, everyKeyGoesWhereItWasTyped) {
    constexpr int rounds = 20;
    for (int round = 0; round < rounds; ++round) {
        const std::string number = std::to_string(round);
        popups.show();
        type("a");
        popups.ask("take " + number);
        type("b");
        popups.ask("hide " + number);
        type("a");
    }
    type("z");
    test::awaitText("press z", output);
    EXPECT_TRUE(eventually([&] { return popups.keys("b") == rounds; })) << popups.keys("b");
    EXPECT_EQ(keys("a"), 2 * rounds);
    EXPECT_EQ(keys("b"), 0);
    EXPECT_EQ(popups.keys("a") + popups.keys("z"), 0);
}

TEST_F(WindowSystemOnDesktopTests, noKeyIsLostWhenSomebodyTypesOn) {
    popups.show();
    int typed = 0;
    {
        const std::jthread typing([&typed](const std::stop_token& end) {
            const test::XClient hands;
            for (; !end.stop_requested(); ++typed) {
                hands.pressKey("k");
                hands.releaseKey("k");
                std::this_thread::sleep_for(2ms);
            }
        });
        for (int round = 0; round < 30; ++round) {
            if (round > 0) popups.show();
            popups.ask("take " + std::to_string(round));
            std::this_thread::sleep_for(10ms);
            popups.ask("hide " + std::to_string(round));
            std::this_thread::sleep_for(10ms);
        }
    }
    EXPECT_TRUE(eventually([&] { return keys("k") + popups.keys("k") >= typed; }));
    EXPECT_EQ(keys("k") + popups.keys("k"), typed);
    EXPECT_GT(keys("k"), 0);
    EXPECT_GT(popups.keys("k"), 0);
}

TEST_F(WindowSystemOnDesktopTests, theKeyboardIsNotLeftWithNobodyWhenTheApplicationEnds) {
    const xcb_window_t popup = popups.show();
    popups.ask("take 0");
    application.signal(SIGKILL);
    EXPECT_TRUE(application.exitCodeWithin(10s));
    popups.ask("hide 0");
    std::this_thread::sleep_for(200ms);
    EXPECT_NE(user.focus(), popup);
    EXPECT_NE(user.focus(), xcb_window_t{XCB_NONE});
}

TEST_F(WindowSystemOnDesktopTests, aRealPanelIsLeftFree) {
    if (!test::areInstalled({"tint2"})) GTEST_SKIP() << "this takes tint2";
    const std::string free = popups.ask("screens");
    const test::Daemon panel({"tray-tint2"});
    EXPECT_TRUE(eventually([&] { return popups.ask("screens") != free; })) << free;
    const std::string whole = free.substr(0, free.find(' '));
    EXPECT_TRUE(popups.ask("screens").starts_with(whole + ' '));
}

} // namespace
} // namespace tavik
