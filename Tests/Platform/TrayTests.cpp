#include "Platform/Support/ProgramTest.h"
#include "Platform/Support/XClient.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <span>
#include <sstream>

namespace tavik {
namespace {

using nlohmann::json;
using test::BackgroundProgram;
using test::Daemon;
using test::XClient;
using testing::ElementsAre;
using namespace std::chrono_literals;

constexpr auto onboarded = R"({"onboardingDone": true})";

/// The program with its icon in a tray.
class TrayTest : public test::ProgramTest {
protected:
    void TearDown() override {
        if (!running) return;
        running->signal(SIGTERM);
        EXPECT_EQ(running->exitCodeWithin(10s), 0);
    }

    void start() {
        running.emplace(command());
        ASSERT_TRUE(becomesReady());
    }

    /// Saves words so that the program knows of them.
    void saveAndShow(const std::vector<std::string>& words) {
        for (const std::string& word : words)
            save(word);
        EXPECT_EQ(startToEnd().exitCode, 0) << "a second start counts the words";
    }

    std::optional<BackgroundProgram> running;
};

/// Other applications may not be read while this is there.
class AccessibilityOff {
public:
    AccessibilityOff() { turnSwitch("<false>"); }

    ~AccessibilityOff() { turnSwitch("<true>"); }

    AccessibilityOff(const AccessibilityOff&) = delete;
    AccessibilityOff& operator=(const AccessibilityOff&) = delete;

private:
    static void turnSwitch(const std::string& value) {
        const auto turned = test::runProcess(
            {"/usr/bin/gdbus", "call", "--session", "-d", "org.a11y.Bus", "-o", "/org/a11y/bus",
             "-m", "org.freedesktop.DBus.Properties.Set", "org.a11y.Status", "IsEnabled", value});
        EXPECT_EQ(turned.exitCode, 0) << turned.errors;
    }
};

/// In a panel that takes icons over D-Bus.
class StatusNotifierTests : public TrayTest {
protected:
    void startInPanel() {
        ASSERT_NO_FATAL_FAILURE(start());
        ASSERT_TRUE(soon([] { return !toolTip().empty(); }));
    }

    static json item() { return tray("'item'").value("item", json::object()); }

    /// The rows of the menu with their keys, "-" for a line between them. What cannot be chosen is
    /// in brackets.
    static std::vector<std::string> rows() {
        std::vector<std::string> all;
        const json menu = tray("'menu'").value("menu", json::object());
        for (const json& entry : menu.value("children", json::array())) {
            if (!entry["visible"].get<bool>()) continue;
            if (entry.value("type", "") == "separator") {
                all.emplace_back("-");
                continue;
            }
            std::string row = entry["label"];
            for (const json& keys : entry.value("shortcut", json::array()))
                for (const json& key : keys)
                    row += "|" + key.get<std::string>();
            all.push_back(entry["enabled"].get<bool>() ? row : "(" + row + ")");
        }
        return all;
    }

    static bool becomesFirst(const std::string& row) {
        return soon([&] {
            const auto all = rows();
            return !all.empty() && all.front() == row;
        });
    }

    static void choose(const std::string& row) {
        EXPECT_EQ(tray("'click', '" + row + "'"), json::object()) << row;
    }

    const Daemon panel{{"tray-watcher"}};
};

TEST_F(StatusNotifierTests, theIconItsTextAndItsMenuFollowTheBook) {
    writePreferences(onboarded);
    ASSERT_NO_FATAL_FAILURE(startInPanel());
    EXPECT_EQ(toolTip(), "Tavik");
    const json before = item();
    EXPECT_EQ(before["Title"], "tavik");
    EXPECT_EQ(before["Status"], "Active");
    EXPECT_THAT(rows(), ElementsAre("划词查询  ⌥D", "输入查词…|Control|L", "-",
                                    "今日复习（已完成）|Control|R", "生词本（0）|Control|V", "-",
                                    "设置…|Control|,", "退出 Tavik|Control|Q"));
    for (const auto* word : {"one", "two", "three"})
        save(word);
    EXPECT_EQ(tray("'activate'"), json::object());
    EXPECT_TRUE(becomesActive("Tavik"));
    EXPECT_TRUE(soon([] { return toolTip() == "Tavik：3 个生词待复习"; }));
    const json& plain = before["IconPixmap"];
    const json badged = item()["IconPixmap"];
    ASSERT_EQ(plain.size(), badged.size());
    for (std::size_t size = 0; size < plain.size(); ++size)
        EXPECT_NE(plain[size], badged[size]);
    EXPECT_THAT(rows(), ElementsAre("划词查询  ⌥D", "输入查词…|Control|L", "-",
                                    "今日复习（3 个待复习）|Control|R", "生词本（3）|Control|V",
                                    "-", "设置…|Control|,", "退出 Tavik|Control|Q"));
}

TEST_F(StatusNotifierTests, theFirstRowTellsOfWhatMayNotBeReadUntilItMay) {
    constexpr auto warning = "⚠️ 未授权辅助功能，无法划词 — 点此设置";
    std::optional<AccessibilityOff> off(std::in_place);
    ASSERT_NO_FATAL_FAILURE(startInPanel());
    EXPECT_TRUE(becomesFirst(warning));
    EXPECT_THAT(rows(), ElementsAre(warning, "-", "划词查询  ⌥D", "输入查词…|Control|L", "-",
                                    "今日复习（已完成）|Control|R", "生词本（0）|Control|V", "-",
                                    "设置…|Control|,", "退出 Tavik|Control|Q"));
    choose(warning);
    EXPECT_TRUE(becomesActive("欢迎使用 Tavik"));
    off.reset();
    EXPECT_TRUE(becomesFirst("划词查询  ⌥D"));
}

TEST_F(StatusNotifierTests, eachRowOpensItsWindowWithTheKeyboardAndTheLastEndsTheProgram) {
    writePreferences(onboarded);
    save("one");
    ASSERT_NO_FATAL_FAILURE(startInPanel());
    for (const auto& [row, title] : {std::pair{"输入查词…", "Tavik 查词"},
                                     {"今日复习（1 个待复习）", "Tavik · 今日复习"},
                                     {"生词本（1）", "Tavik · 生词本"},
                                     {"设置…", "Tavik 设置"}}) {
        choose(row);
        EXPECT_TRUE(becomesActive(title)) << activeWindow();
    }
    choose("退出 Tavik");
    EXPECT_EQ(running->exitCodeWithin(10s), 0);
    running.reset();
}

TEST_F(StatusNotifierTests, theFirstRowLooksUpWhatIsSelectedInTheApplicationInFront) {
    writePreferences(onboarded);
    const std::string keys = directory.file("keys");
    const BackgroundProgram target({TAVIK_COPY_TARGET, "text=ephemeral"}, keys);
    test::awaitText("ready", keys);
    ASSERT_NO_FATAL_FAILURE(startInPanel());
    ASSERT_TRUE(becomesActive("copy-target"));
    choose("划词查询  ⌥D");
    test::ScreenReader reader(running->id());
    EXPECT_TRUE(soon([&] { return !reader.window("Tavik 释义：ephemeral").empty(); }));
}

/// In a panel that takes icons as windows, with the mouse of a user.
class XEmbedTests : public TrayTest {
protected:
    void startInPanel() {
        ASSERT_NO_FATAL_FAILURE(start());
        ASSERT_TRUE(soon([this] {
            std::istringstream(xdotool({"search", "--onlyvisible", "--class", "^tavik$"})) >> icon;
            return icon != XCB_NONE;
        }));
        ASSERT_TRUE(soon([this] { return countPixels(ground) > 0; })) << "the icon is not drawn";
    }

    static std::string xdotool(std::vector<std::string> words) {
        words.insert(words.begin(), "/usr/bin/xdotool");
        return test::runProcess(words).output;
    }

    using Colour = std::array<int, 3>;

    /// How many of the icon's pixels have about this colour.
    std::ptrdiff_t countPixels(const Colour& wanted) {
        const XCBReply<xcb_get_geometry_reply_t> place(xcb_get_geometry_reply(
            client.connection(), xcb_get_geometry(client.connection(), icon), nullptr));
        if (!place) return 0;
        const XCBReply<xcb_get_image_reply_t> image(
            xcb_get_image_reply(client.connection(),
                                xcb_get_image(client.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, icon,
                                              0, 0, place->width, place->height, ~0U),
                                nullptr));
        if (!image) return 0;
        const auto size = static_cast<std::size_t>(xcb_get_image_data_length(image.get()));
        const std::span bytes(xcb_get_image_data(image.get()), size);
        std::ptrdiff_t count = 0;
        for (std::size_t at = 0; at + 4 <= size; at += 4)
            if (isLike({bytes[at + 2], bytes[at + 1], bytes[at]}, wanted)) ++count;
        return count;
    }

    static bool isLike(const Colour& one, const Colour& other) {
        constexpr int tolerance = 12;
        return std::ranges::equal(one, other,
                                  [](int a, int b) { return std::abs(a - b) <= tolerance; });
    }

    /// Moves the mouse onto the icon, from elsewhere.
    void pointAtIcon() {
        const XCBReply<xcb_translate_coordinates_reply_t> corner(xcb_translate_coordinates_reply(
            client.connection(),
            xcb_translate_coordinates(client.connection(), icon, client.root(), 0, 0), nullptr));
        ASSERT_TRUE(corner);
        client.movePointer(200, 200);
        for (const int step : {8, 10})
            client.movePointer(static_cast<std::int16_t>(corner->dst_x + step),
                               static_cast<std::int16_t>(corner->dst_y + step));
    }

    /// Whether a menu has taken the keyboard. With the server held, so that who wants it now does
    /// not find it taken by us.
    bool isKeyboardTaken() {
        xcb_grab_server(client.connection());
        const XCBReply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(
            client.connection(),
            xcb_grab_keyboard(client.connection(), 0, client.root(), XCB_CURRENT_TIME,
                              XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
            nullptr));
        xcb_ungrab_keyboard(client.connection(), XCB_CURRENT_TIME);
        xcb_ungrab_server(client.connection());
        client.sync();
        return reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
    }

    static constexpr Colour ground{0x2f, 0x6f, 0xe0};
    static constexpr Colour badge{0xd7, 0x2b, 0x2b};
    const Daemon panel{{"tray-trayer"}};
    XClient client;
    xcb_window_t icon = XCB_NONE;
};

TEST_F(XEmbedTests, theIconShowsThatWordsAreDueAndItsTipHowMany) {
    writePreferences(onboarded);
    ASSERT_NO_FATAL_FAILURE(startInPanel());
    EXPECT_EQ(countPixels(badge), 0);
    saveAndShow({"one", "two", "three"});
    EXPECT_TRUE(soon([this] { return countPixels(badge) > 20; })) << countPixels(badge);
    pointAtIcon();
    test::ScreenReader reader(running->id());
    EXPECT_TRUE(soon([&] { return !reader.window("Tavik：3 个生词待复习").empty(); }));
}

TEST_F(XEmbedTests, aClickShowsTheProgramAndTheOtherButtonItsMenu) {
    writePreferences(onboarded);
    ASSERT_NO_FATAL_FAILURE(startInPanel());
    pointAtIcon();
    client.clickButton(3);
    ASSERT_TRUE(soon([this] { return isKeyboardTaken(); }));
    for (const auto* key : {"Up", "Up", "Return"})
        press(key);
    EXPECT_TRUE(becomesActive("Tavik 设置"));
    pointAtIcon();
    client.clickButton(1);
    EXPECT_TRUE(becomesActive("Tavik"));
}

} // namespace
} // namespace tavik
