#include "Platform/Linux/X11/X11Workspace.h"
#include "Platform/Linux/Xdg/DesktopEntries.h"
#include "Platform/Support/Daemon.h"
#include "Platform/Support/NestedServer.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QByteArray>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <initializer_list>
#include <string_view>
#include <thread>
#include <vector>

namespace tavik {
namespace {

using namespace std::chrono_literals;
using test::NestedServer;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Clock = std::chrono::steady_clock;
/// Beyond the second that the port grants.
constexpr auto latest = 1400ms;

/// A program with windows that carry what the test wants, and its own window manager.
class Client {
public:
    Client() : connection(xcb_connect(nullptr, nullptr)) {}

    ~Client() { xcb_disconnect(connection); }

    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    xcb_window_t root() const {
        return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    }

    xcb_window_t addWindow(std::int16_t x, std::int16_t y, xcb_window_t parent) {
        const xcb_window_t window = xcb_generate_id(connection);
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, parent, x, y, 200, 100, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        return window;
    }

    void setText(xcb_window_t window, std::string_view name, std::string_view type,
                 std::string_view text) {
        set(window, name, type, 8, static_cast<std::uint32_t>(text.size()), text.data());
    }

    void setNumbers(xcb_window_t window, std::string_view name, std::string_view type,
                    const std::vector<std::uint32_t>& numbers) {
        set(window, name, type, 32, static_cast<std::uint32_t>(numbers.size()), numbers.data());
    }

    void setAtoms(xcb_window_t window, std::string_view name,
                  std::initializer_list<std::string_view> values) {
        std::vector<std::uint32_t> atoms;
        for (const std::string_view value : values)
            atoms.push_back(atom(value));
        setNumbers(window, name, "ATOM", atoms);
    }

    void activate(xcb_window_t window) {
        setNumbers(root(), "_NET_ACTIVE_WINDOW", "WINDOW", {window});
    }

    void destroy(xcb_window_t window) {
        xcb_destroy_window(connection, window);
        sync();
    }

private:
    xcb_atom_t atom(std::string_view name) {
        const auto request =
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
        auto* reply = xcb_intern_atom_reply(connection, request, nullptr);
        const xcb_atom_t found = reply->atom;
        std::free(reply); // NOLINT: allocated by libxcb
        return found;
    }

    void set(xcb_window_t window, std::string_view name, std::string_view type, std::uint8_t format,
             std::uint32_t count, const void* data) {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom(name), atom(type),
                            format, count, data);
        sync();
    }

    void sync() { atom("WM_NAME"); }

    xcb_connection_t* connection;
};

std::optional<std::string> noName(const std::string& /*identifier*/,
                                  const std::string& /*windowClass*/) {
    return std::nullopt;
}

class WorkspaceTests : public testing::Test {
protected:
    /// A window as a window manager frames it, in front.
    void SetUp() override {
        frame = client.addWindow(100, 50, client.root());
        window = client.addWindow(4, 20, frame);
        client.setNumbers(window, "_NET_WM_PID", "CARDINAL", {1234});
        client.setText(window, "_NET_WM_NAME", "UTF8_STRING", "日记");
        client.setText(window, "WM_NAME", "STRING", "caf\xe9");
        client.setText(window, "WM_CLASS", "STRING", {"pad\0MousePad\0", 13});
        client.setText(window, "_GTK_APPLICATION_ID", "UTF8_STRING", "org.xfce.Mousepad");
        client.setNumbers(window, "_NET_FRAME_EXTENTS", "CARDINAL", {4, 5, 20, 6});
        client.activate(window);
    }

    FrontApplication front() { return workspace.frontApplication().value_or(FrontApplication()); }

    static void addMonitor(const std::string& name, const std::string& place,
                           const std::string& output) {
        const auto result =
            test::runProcess({"/usr/bin/xrandr", "--setmonitor", name, place, output});
        EXPECT_EQ(result.exitCode, 0) << result.errors;
    }

    /// Another window, by what it is told as: "pid/class@title".
    xcb_window_t add(std::uint32_t process, const std::string& windowClass,
                     const std::string& title) {
        const xcb_window_t added = client.addWindow(0, 0, client.root());
        if (process > 0) client.setNumbers(added, "_NET_WM_PID", "CARDINAL", {process});
        client.setText(added, "WM_CLASS", "STRING", "x" + std::string(1, '\0') + windowClass);
        client.setText(added, "WM_NAME", "STRING", title);
        return added;
    }

    std::vector<std::string> applications() {
        std::vector<std::string> told;
        for (const auto& each : workspace.applications())
            told.push_back(std::to_string(each.processIdentifier) + '/'
                           + each.bundleIdentifier.value_or("") + '@' + each.windowTitle);
        return told;
    }

    bool isNothing() { return !workspace.frontApplication(); }

    NestedServer server{"-screen 0 800x600x24"};
    Client client;
    xcb_window_t frame = XCB_NONE;
    xcb_window_t window = XCB_NONE;
    X11Workspace workspace{noName};
};

TEST_F(WorkspaceTests, theActiveWindowTellsItsApplicationAndItsPlace) {
    X11Workspace named([](const std::string& identifier, const std::string& windowClass) {
        return identifier + "/" + windowClass;
    });
    const auto found = named.frontApplication().value_or(FrontApplication());
    EXPECT_EQ(found.localizedName, "org.xfce.Mousepad/MousePad");
    EXPECT_EQ(found.bundleIdentifier, "org.xfce.Mousepad");
    EXPECT_EQ(found.processIdentifier, 1234);
    EXPECT_EQ(found.windowTitle, "日记");
    EXPECT_EQ(found.contents, (ScreenRect{104, 70, 200, 100}));
    EXPECT_EQ(found.frame, (ScreenRect{100, 50, 209, 126}));
}

TEST_F(WorkspaceTests, whatAWindowLacksIsTakenFromElsewhere) {
    client.setText(window, "_NET_WM_NAME", "UTF8_STRING", "");
    client.setText(window, "_GTK_APPLICATION_ID", "UTF8_STRING", "");
    EXPECT_EQ(front().windowTitle, "café");
    EXPECT_EQ(front().bundleIdentifier, "mousepad");
    EXPECT_EQ(front().localizedName, "MousePad");
    client.setText(window, "WM_NAME", "COMPOUND_TEXT", "\x1b%G日记");
    client.setText(window, "WM_CLASS", "STRING", "instance only");
    EXPECT_EQ(front().windowTitle, "");
    EXPECT_EQ(front().bundleIdentifier, std::nullopt);
    EXPECT_EQ(front().localizedName, std::nullopt);
}

TEST_F(WorkspaceTests, whatMakesNoSenseCountsAsAbsent) {
    client.setText(window, "_NET_WM_NAME", "UTF8_STRING", "bad\xff\xfe");
    EXPECT_EQ(front().windowTitle, "bad\ufffd\ufffd");
    client.setText(window, "_NET_WM_NAME", "UTF8_STRING", std::string(1000000, 'a'));
    EXPECT_THAT(front().windowTitle, SizeIs(4096));
    client.setNumbers(window, "_NET_WM_NAME", "UTF8_STRING", {0x61616161});
    EXPECT_EQ(front().windowTitle, "café");
    client.setNumbers(window, "_NET_FRAME_EXTENTS", "CARDINAL", {4, 5, 20, 0xffffffff});
    EXPECT_EQ(front().frame, front().contents);
    client.setNumbers(window, "_NET_FRAME_EXTENTS", "CARDINAL", {4, 5});
    EXPECT_EQ(front().frame, front().contents);
    EXPECT_EQ(front().processIdentifier, 1234);
    client.setText(window, "_NET_WM_PID", "CARDINAL", "1234");
    EXPECT_EQ(front().processIdentifier, getpid()) << "as the server knows it";
    client.setNumbers(window, "_NET_WM_PID", "WINDOW", {1234});
    EXPECT_EQ(front().processIdentifier, getpid());
    client.setNumbers(window, "_NET_WM_PID", "CARDINAL", {0xffffffff});
    EXPECT_EQ(front().processIdentifier, 0);
    EXPECT_EQ(front().windowTitle, "café") << "known all the same";
}

TEST_F(WorkspaceTests, aWindowThatIsGoneOrWasNeverThereIsNothing) {
    client.destroy(window);
    EXPECT_TRUE(isNothing());
    client.activate(XCB_NONE);
    EXPECT_TRUE(isNothing());
    client.activate(0xffffffff);
    EXPECT_TRUE(isNothing());
    client.setText(client.root(), "_NET_ACTIVE_WINDOW", "WINDOW", "text");
    EXPECT_TRUE(isNothing());
}

TEST_F(WorkspaceTests, everyApplicationIsToldOnceWithItsUppermostWindow) {
    EXPECT_THAT(applications(), IsEmpty()) << "no window manager, no list";
    const xcb_window_t lower = add(7, "Web", "lower");
    const xcb_window_t upper = add(7, "Web", "upper");
    const xcb_window_t foreign = add(0xffffffff, "Far", "far");
    const xcb_window_t sameForeign = add(0xffffffff, "Far", "far too");
    const xcb_window_t untold = add(0, "Term", "told by the server");
    const xcb_window_t panel = add(8, "Panel", "panel");
    client.setAtoms(panel, "_NET_WM_WINDOW_TYPE", {"_NET_WM_WINDOW_TYPE_DOCK"});
    const xcb_window_t dialog = add(9, "Edit", "dialog");
    client.setAtoms(dialog, "_NET_WM_WINDOW_TYPE", {"_NET_WM_WINDOW_TYPE_DIALOG"});
    client.setNumbers(client.root(), "_NET_CLIENT_LIST", "WINDOW", {upper, dialog});
    EXPECT_THAT(applications(), ElementsAre("9/edit@dialog", "7/web@upper"));
    client.setNumbers(client.root(), "_NET_CLIENT_LIST_STACKING", "WINDOW",
                      {lower, sameForeign, foreign, untold, panel, upper, dialog, 0xffffffff});
    EXPECT_THAT(applications(),
                ElementsAre("9/edit@dialog", "7/web@upper",
                            std::to_string(getpid()) + "/term@told by the server", "0/far@far"));
}

TEST_F(WorkspaceTests, aListThatIsTooLongCostsNoMoreThanItsUppermostWindows) {
    std::vector<std::uint32_t> windows(100'000, 0xffffffff);
    windows.at(4095) = add(7, "Web", "page");
    client.setNumbers(client.root(), "_NET_CLIENT_LIST_STACKING", "WINDOW", windows);
    const auto begin = Clock::now();
    EXPECT_THAT(applications(), ElementsAre("7/web@page"));
    EXPECT_LT(Clock::now() - begin, latest);
}

TEST_F(WorkspaceTests, aServerThatIsStoppedHoldsNobodyUpAndIsAskedAgain) {
    X11Workspace unconnected(noName);
    EXPECT_FALSE(isNothing());
    server.signal(SIGSTOP);
    for (X11Workspace* each : {&workspace, &unconnected}) {
        const auto begin = Clock::now();
        EXPECT_FALSE(each->frontApplication());
        EXPECT_LT(Clock::now() - begin, latest);
    }
    server.signal(SIGCONT);
    EXPECT_FALSE(isNothing());
    EXPECT_TRUE(unconnected.frontApplication());
    server.signal(SIGSTOP);
    EXPECT_THAT(workspace.screens(), IsEmpty());
}

TEST_F(WorkspaceTests, aServerThatEndedIsNothingAndTheNextOneIsFound) {
    EXPECT_FALSE(isNothing());
    server.end();
    EXPECT_TRUE(isNothing());
    EXPECT_THAT(workspace.screens(), IsEmpty());
    const NestedServer next("-screen 0 640x480x24");
    EXPECT_THAT(workspace.screens(), ElementsAre(ScreenRect{0, 0, 640, 480}));
}

TEST_F(WorkspaceTests, theScreensAreTheMonitorsWithThePrimaryOneFirst) {
    EXPECT_THAT(workspace.screens(), ElementsAre(ScreenRect{0, 0, 800, 600}));
    addMonitor("left", "300/80x600/160+0+0", "screen");
    addMonitor("*right", "500/130x600/160+300+0", "none");
    EXPECT_THAT(workspace.screens(),
                ElementsAre(ScreenRect{300, 0, 500, 600}, ScreenRect{0, 0, 300, 600}));
    const NestedServer plain("-screen 0 320x200x24 -extension RANDR");
    EXPECT_THAT(X11Workspace(noName).screens(), ElementsAre(ScreenRect{0, 0, 320, 200}));
}

TEST(WorkspaceOnDesktopTests, aProgramThatComesToTheFrontIsTold) {
    if (!test::areInstalled({"mousepad"})) GTEST_SKIP() << "this takes mousepad";
    const test::TemporaryDirectory folder;
    test::writeFile(folder.file("note.txt"), "ephemeral\n");
    const test::BackgroundProgram editor({"mousepad", folder.file("note.txt")});
    X11Workspace workspace(noName);
    std::optional<FrontApplication> found;
    for (const auto end = Clock::now() + 10s; !found && Clock::now() < end;) {
        std::this_thread::sleep_for(20ms);
        found = workspace.frontApplication();
        if (found && found->windowTitle.find("note.txt") == std::string::npos) found.reset();
    }
    ASSERT_TRUE(found);
    EXPECT_EQ(found->processIdentifier, editor.id());
    EXPECT_EQ(found->bundleIdentifier, "org.xfce.mousepad");
    EXPECT_GT(found->frame.height, found->contents.height);
    EXPECT_LT(found->frame.y, found->contents.y);
}

class DesktopEntryTests : public testing::Test {
protected:
    void SetUp() override { qputenv("LANGUAGE", "zh_CN"); }

    void TearDown() override { qputenv("LANGUAGE", usual); }

    static void install(const std::string& id, const std::string& name,
                        const std::string& more = "") {
        const std::filesystem::path folder = qgetenv("XDG_DATA_HOME").toStdString();
        std::filesystem::create_directories(folder / "applications");
        test::writeFile(folder / "applications" / (id + ".desktop"),
                        "[Desktop Entry]\nType=Application\nExec=/bin/true\nName=English\n"
                        "Name[zh_CN]="
                            + name + "\n" + more);
    }

    QByteArray usual = qgetenv("LANGUAGE");
};

TEST_F(DesktopEntryTests, aProgramHasTheNameOfItsEntryInTheUsersLanguage) {
    install("org.example.Pad", "记事本");
    install("oldpad", "老记事本");
    install("org.example.Web", "网页", "StartupWMClass=WebBrowser\nNoDisplay=true\n");
    install("org.example.Gone", "已删除", "Hidden=true\n");
    install("org.example.Empty", "");
    DesktopEntries entries;
    EXPECT_EQ(entries.name("org.example.Pad", ""), "记事本");
    EXPECT_EQ(entries.name("OldPad", ""), "老记事本");
    EXPECT_EQ(entries.name("", "oldpad"), "老记事本");
    EXPECT_EQ(entries.name("webbrowser", "webBrowser"), "网页");
    EXPECT_EQ(entries.name("org.example.Gone", "Gone"), std::nullopt);
    EXPECT_EQ(entries.name("../applications/oldpad", ""), std::nullopt);
    EXPECT_EQ(entries.name("", ""), std::nullopt);
    EXPECT_EQ(entries.name("bad\xff", "bad\xff"), std::nullopt);
}

TEST_F(DesktopEntryTests, aProgramThatIsInstalledLaterIsFoundAfterAWhile) {
    DesktopEntries patient(1h);
    DesktopEntries impatient(0ms);
    EXPECT_EQ(patient.name("org.example.Late", ""), std::nullopt);
    EXPECT_EQ(impatient.name("org.example.Late", ""), std::nullopt);
    install("org.example.Late", "后来");
    // GIO sees by a watch on the folder that it changed.
    std::optional<std::string> found;
    for (const auto end = Clock::now() + 10s; !found && Clock::now() < end;) {
        std::this_thread::sleep_for(20ms);
        found = impatient.name("org.example.Late", "");
    }
    EXPECT_EQ(found, "后来");
    EXPECT_EQ(patient.name("org.example.Late", ""), std::nullopt);
}

} // namespace
} // namespace tavik
