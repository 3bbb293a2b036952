#include "HotKey/KeyNames.h"
#include "Platform/Linux/Keys/ClassicKeys.h"
#include "Platform/Linux/X11/X11HotKey.h"
#include "Platform/Qt/QtMainQueue.h"
#include "Platform/Support/LoopWatch.h"
#include "Platform/Support/NestedServer.h"
#include "Platform/Support/XClient.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tavik {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using test::LoopWatch;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr auto grace = 1000ms;
#else
constexpr auto grace = 300ms;
#endif
/// In which what is not expected would have happened.
constexpr auto aWhile = 120ms;

namespace Classic {

constexpr std::uint32_t a = 0;
constexpr std::uint32_t z = 6;
constexpr std::uint32_t d = 2;
constexpr std::uint32_t m = 46;
constexpr std::uint32_t f4 = 118;
constexpr std::uint32_t alt = 0x800;
constexpr std::uint32_t shift = 0x200;
constexpr std::uint32_t controlAndAlt = 0x1800;

} // namespace Classic

/// Places on the keyboard.
namespace Place {

constexpr xcb_keycode_t q = 24;
constexpr xcb_keycode_t y = 29;
constexpr xcb_keycode_t control = 37;
constexpr xcb_keycode_t a = 38;
constexpr xcb_keycode_t d = 40;
constexpr xcb_keycode_t semicolon = 47;
constexpr xcb_keycode_t shift = 50;
constexpr xcb_keycode_t m = 58;
constexpr xcb_keycode_t alt = 64;
constexpr xcb_keycode_t capsLock = 66;
constexpr xcb_keycode_t numLock = 77;

} // namespace Place

void setLayout(const std::vector<std::string>& options) {
    std::vector<std::string> command{"setxkbmap", "-option", ""};
    command.insert(command.end(), options.begin(), options.end());
    const auto status = test::BackgroundProgram(command).exitCodeWithin(10s);
    if (status != 0) throw std::runtime_error("setxkbmap failed");
}

/// A user at the keyboard, and another program that wants keys for itself.
class Desk : public test::XClient {
public:
    void touch(std::uint8_t kind, xcb_keycode_t key) const {
        xcb_test_fake_input(connection(), kind, key, XCB_CURRENT_TIME, root(), 0, 0, 0);
        sync();
    }

    void tap(xcb_keycode_t key) const {
        touch(XCB_KEY_PRESS, key);
        touch(XCB_KEY_RELEASE, key);
    }

    void tapWith(const std::vector<xcb_keycode_t>& modifiers, xcb_keycode_t key) const {
        for (const xcb_keycode_t modifier : modifiers)
            touch(XCB_KEY_PRESS, modifier);
        tap(key);
        for (const xcb_keycode_t modifier : modifiers)
            touch(XCB_KEY_RELEASE, modifier);
    }

    /// The modifiers that are in force, and the layout in its two highest bits.
    unsigned state() const {
        const XCBReply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
            connection(), xcb_query_pointer(connection(), root()), nullptr));
        return reply ? reply->mask : 0;
    }

    bool grab(unsigned modifiers, xcb_keycode_t key) const {
        const auto request =
            xcb_grab_key_checked(connection(), 0, root(), static_cast<std::uint16_t>(modifiers),
                                 key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        return !XCBReply<xcb_generic_error_t>(xcb_request_check(connection(), request));
    }

    /// Whether nobody has it.
    bool canGrabKeyboard() const {
        const auto request = xcb_grab_keyboard(connection(), 0, root(), XCB_CURRENT_TIME,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        const XCBReply<xcb_grab_keyboard_reply_t> reply(
            xcb_grab_keyboard_reply(connection(), request, nullptr));
        xcb_ungrab_keyboard(connection(), XCB_CURRENT_TIME);
        sync();
        return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }

    void ungrab(unsigned modifiers, xcb_keycode_t key) const {
        xcb_ungrab_key(connection(), key, root(), static_cast<std::uint16_t>(modifiers));
        sync();
    }

    /// In the way of the input extension.
    bool grabDevice(std::uint32_t modifiers, xcb_keycode_t key) const {
        const std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
        const XCBReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
            connection(), xcb_input_xi_query_version(connection(), 2, 2), nullptr));
        const auto request = xcb_input_xi_passive_grab_device(
            connection(), XCB_CURRENT_TIME, root(), XCB_NONE, key, XCB_INPUT_DEVICE_ALL_MASTER, 1,
            1, XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_GRAB_MODE_ASYNC, 0,
            &events, &modifiers);
        const XCBReply<xcb_input_xi_passive_grab_device_reply_t> reply(
            xcb_input_xi_passive_grab_device_reply(connection(), request, nullptr));
        return reply && reply->num_modifiers == 0;
    }
};

std::set<int> openSockets() {
    std::set<int> sockets;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (std::filesystem::read_symlink(entry, gone).string().starts_with("socket:"))
            sockets.insert(std::stoi(entry.path().filename()));
    }
    return sockets;
}

class HotKeyTest : public testing::Test {
protected:
    void SetUp() override {
        hotKey->setOnPress([this] { ++presses; });
    }

    void TearDown() override {
        for (const xcb_keycode_t key : {Place::d, Place::shift, Place::alt, Place::control})
            desk.touch(XCB_KEY_RELEASE, key);
        if ((desk.state() & XCB_MOD_MASK_LOCK) != 0) desk.tap(Place::capsLock);
        if ((desk.state() & XCB_MOD_MASK_2) != 0) desk.tap(Place::numLock);
        if (hasOtherLayout) setLayout({"us"});
    }

    void useLayout(const std::vector<std::string>& options) {
        hasOtherLayout = true;
        setLayout(options);
    }

    /// How often it fires for these keys, of which it is expected.
    int pressesOf(const std::vector<xcb_keycode_t>& modifiers, xcb_keycode_t key,
                  std::chrono::milliseconds limit = 5s) {
        const int before = presses;
        desk.tapWith(modifiers, key);
        loop.runUntil([&] { return presses > before; }, limit);
        return presses - before;
    }

    bool staysSilentFor(const std::vector<xcb_keycode_t>& modifiers, xcb_keycode_t key) {
        return pressesOf(modifiers, key, aWhile) == 0;
    }

    /// Once the change of layout is known.
    bool comesToFireFor(xcb_keycode_t key) {
        const bool fires = loop.runUntil([&] { return !staysSilentFor({Place::alt}, key); });
        loop.runFor(aWhile);
        return fires;
    }

    bool comesToBe(bool isRegistered) {
        return loop.runUntil([&] { return hotKey->isRegistered().value() == isRegistered; });
    }

    QtMainQueue queue;
    LoopWatch loop;
    Desk desk;
    std::optional<X11HotKey> hotKey{std::in_place, queue};
    int presses = 0;
    bool hasOtherLayout = false;
};

TEST_F(HotKeyTest, firesOncePerPressWhateverLocksAreInForce) {
    ASSERT_TRUE(hotKey->registerHotKey(Classic::d, Classic::alt));
    EXPECT_TRUE(hotKey->isRegistered().value());
    EXPECT_EQ(pressesOf({Place::alt}, Place::d), 1);
    desk.tap(Place::capsLock);
    EXPECT_EQ(pressesOf({Place::alt}, Place::d), 1);
    desk.tap(Place::numLock);
    ASSERT_EQ(desk.state() & 0xffU, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2);
    EXPECT_EQ(pressesOf({Place::alt}, Place::d), 1);
    desk.tap(Place::capsLock);
    EXPECT_EQ(pressesOf({Place::alt}, Place::d), 1);
    EXPECT_TRUE(staysSilentFor({Place::alt, Place::shift}, Place::d));
    EXPECT_TRUE(staysSilentFor({}, Place::d));
    loop.runFor(aWhile);
    EXPECT_EQ(presses, 4);
}

TEST_F(HotKeyTest, aHeldKeyFiresOnce) {
    ASSERT_TRUE(hotKey->registerHotKey(Classic::d, Classic::alt));
    desk.touch(XCB_KEY_PRESS, Place::alt);
    desk.touch(XCB_KEY_PRESS, Place::d);
    ASSERT_TRUE(loop.runUntil([this] { return presses == 1; }));
    // Applications do not say what is focused in them while the keyboard is somebody else's.
    EXPECT_TRUE(desk.canGrabKeyboard());
    loop.runFor(1000ms);
    EXPECT_EQ(presses, 1);
    desk.touch(XCB_KEY_RELEASE, Place::d);
    // Nobody presses a key twice within a millisecond.
    loop.runFor(5ms);
    EXPECT_EQ(pressesOf({}, Place::d), 1);
}

TEST_F(HotKeyTest, whatAnotherProgramHoldsIsRefusedAndNothingIsKept) {
    const unsigned withNumLock = XCB_MOD_MASK_1 | XCB_MOD_MASK_2;
    ASSERT_TRUE(hotKey->registerHotKey(Classic::a, Classic::alt));
    {
        const Desk other;
        ASSERT_TRUE(other.grab(withNumLock, Place::d));
        EXPECT_FALSE(hotKey->registerHotKey(Classic::d, Classic::alt));
        EXPECT_FALSE(hotKey->isRegistered().value());
        for (const xcb_keycode_t key : {Place::a, Place::d}) {
            EXPECT_TRUE(desk.grab(XCB_MOD_MASK_1, key));
            desk.ungrab(XCB_MOD_MASK_1, key);
        }
        other.ungrab(withNumLock, Place::d);
        EXPECT_TRUE(hotKey->registerHotKey(Classic::d, Classic::alt));
        hotKey->unregisterHotKey();
        ASSERT_TRUE(other.grabDevice(XCB_MOD_MASK_1, Place::d));
        EXPECT_FALSE(hotKey->registerHotKey(Classic::d, Classic::alt));
    }
    EXPECT_TRUE(loop.runUntil([&] { return hotKey->registerHotKey(Classic::d, Classic::alt); }));
    EXPECT_EQ(pressesOf({Place::alt}, Place::d), 1);
    // Of the window manager.
    EXPECT_FALSE(hotKey->registerHotKey(Classic::f4, Classic::alt));
}

TEST_F(HotKeyTest, whatIsOursIsRefusedToOthersUntilItIsGivenUp) {
    ASSERT_TRUE(hotKey->registerHotKey(Classic::d, Classic::alt));
    EXPECT_FALSE(desk.grab(XCB_MOD_MASK_1, Place::d));
    EXPECT_FALSE(desk.grab(XCB_MOD_MASK_1 | XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2, Place::d));
    hotKey->unregisterHotKey();
    EXPECT_FALSE(hotKey->isRegistered().value());
    EXPECT_TRUE(loop.runUntil([&] { return desk.grab(XCB_MOD_MASK_1, Place::d); }));
    desk.ungrab(XCB_MOD_MASK_1, Place::d);
    ASSERT_TRUE(hotKey->registerHotKey(Classic::d, Classic::alt));
    hotKey.reset();
    EXPECT_TRUE(loop.runUntil([&] { return desk.grab(XCB_MOD_MASK_1, Place::d); }));
}

TEST_F(HotKeyTest, aPressOnItsWayIsLostOnceTheCombinationIsGivenUp) {
    // The notice of it waits, as when the main thread is busy.
    const auto pressMeanwhile = [&](xcb_keycode_t key) {
        desk.tapWith({Place::alt}, key);
        std::this_thread::sleep_for(50ms);
    };
    ASSERT_TRUE(hotKey->registerHotKey(Classic::d, Classic::alt));
    pressMeanwhile(Place::d);
    ASSERT_TRUE(hotKey->registerHotKey(Classic::a, Classic::alt));
    loop.runFor(aWhile);
    EXPECT_EQ(presses, 0);
    pressMeanwhile(Place::a);
    hotKey.reset();
    loop.runFor(aWhile);
    EXPECT_EQ(presses, 0);
}

TEST_F(HotKeyTest, everyNamedKeyCanBeTakenButNoneWithoutModifiers) {
    for (const char* const layout : {"us", "fr"}) {
        useLayout({layout});
        int named = 0;
        for (std::uint32_t code = 0; code < 128; ++code) {
            if (KeyNames::name(code).starts_with('#')) continue;
            ++named;
            EXPECT_TRUE(hotKey->registerHotKey(code, Classic::controlAndAlt))
                << KeyNames::name(code) << " in " << layout;
        }
        EXPECT_EQ(named, 48);
    }
    EXPECT_FALSE(hotKey->registerHotKey(Classic::d, 0));
    EXPECT_FALSE(hotKey->registerHotKey(Classic::d, 0x400));
    EXPECT_FALSE(hotKey->registerHotKey(127, Classic::alt));
    EXPECT_TRUE(loop.runUntil([&] { return desk.grab(XCB_MOD_MASK_1, Place::d); }));
    desk.ungrab(XCB_MOD_MASK_1, Place::d);
    EXPECT_TRUE(hotKey->registerHotKey(Classic::d, Classic::shift));
}

TEST_F(HotKeyTest, firesForTheKeyThatWritesTheLetterOrElseForTheKeyAtItsPlace) {
    struct Case {
        std::string layout;
        std::uint32_t code;
        xcb_keycode_t place;
    };

    for (const auto& [layout, code, place] : std::vector<Case>{{"us", Classic::d, Place::d},
                                                               {"de", Classic::z, Place::y},
                                                               {"fr", Classic::m, Place::semicolon},
                                                               {"ru", Classic::m, Place::m},
                                                               {"us,ru", Classic::d, Place::d}}) {
        useLayout({layout, "-option", "grp:caps_toggle"});
        if (layout.find(',') != std::string::npos) {
            desk.tap(Place::capsLock);
            ASSERT_EQ(desk.state() >> 13U, 1U) << "the second layout is not in use";
        }
        EXPECT_TRUE(hotKey->registerHotKey(code, Classic::alt)) << layout;
        EXPECT_EQ(pressesOf({Place::alt}, place), 1) << layout;
        EXPECT_TRUE(staysSilentFor({Place::alt}, Place::a)) << layout;
    }
    desk.tap(Place::capsLock);
}

TEST_F(HotKeyTest, staysWithItsLetterWhenTheLayoutChanges) {
    ASSERT_TRUE(hotKey->registerHotKey(Classic::a, Classic::alt));
    EXPECT_EQ(pressesOf({Place::alt}, Place::a), 1);
    useLayout({"fr"});
    EXPECT_TRUE(comesToFireFor(Place::q));
    EXPECT_TRUE(staysSilentFor({Place::alt}, Place::a));
    ASSERT_TRUE(desk.grab(XCB_MOD_MASK_1, Place::a));
    useLayout({"us"});
    EXPECT_TRUE(comesToBe(false));
    EXPECT_TRUE(staysSilentFor({Place::alt}, Place::q));
    desk.ungrab(XCB_MOD_MASK_1, Place::a);
    useLayout({"de"});
    EXPECT_TRUE(comesToBe(true));
    EXPECT_TRUE(comesToFireFor(Place::a));
}

TEST_F(HotKeyTest, isTakenAnewWhenTheConnectionBreaks) {
    const auto before = openSockets();
    ASSERT_TRUE(hotKey->registerHotKey(Classic::d, Classic::alt));
    std::vector<bool> changes;
    const auto subscription =
        hotKey->isRegistered().observe([&](bool isRegistered) { changes.push_back(isRegistered); });
    for (const int socket : openSockets())
        if (!before.contains(socket)) shutdown(socket, SHUT_RDWR);
    EXPECT_TRUE(loop.runUntil([&] { return changes == std::vector{false, true}; }));
    EXPECT_EQ(pressesOf({Place::alt}, Place::d), 1);
}

TEST_F(HotKeyTest, aServerThatHangsIsAwaitedForHalfASecondAndAnswersLater) {
    std::optional<test::NestedServer> server(std::in_place);
    ASSERT_TRUE(hotKey->registerHotKey(Classic::a, Classic::alt));
    server->signal(SIGSTOP);
    const auto start = Clock::now();
    EXPECT_FALSE(hotKey->registerHotKey(Classic::d, Classic::alt));
    EXPECT_LT(Clock::now() - start, 500ms + grace);
    EXPECT_FALSE(hotKey->isRegistered().value());
    server->signal(SIGCONT);
    EXPECT_TRUE(comesToBe(true));
    server->end();
    EXPECT_TRUE(comesToBe(false));
    EXPECT_FALSE(hotKey->registerHotKey(Classic::d, Classic::alt));
}

TEST(ClassicKeysTest, aKeyIsFoundByWhatItMeans) {
    const auto codeOf = [](std::uint32_t keysym) {
        const ClassicKey* key = classicKeyOfKeysym(keysym);
        return key == nullptr ? std::nullopt : std::optional(key->code);
    };
    EXPECT_EQ(codeOf('d'), 2U);
    EXPECT_EQ(codeOf('D'), 2U);
    EXPECT_EQ(codeOf(' '), 49U);
    // The seven of the number pad, with NumLock and without.
    EXPECT_EQ(codeOf(0xffb7), 89U);
    EXPECT_EQ(codeOf(0xff95), 89U);
    EXPECT_EQ(codeOf(0xff9f), 65U);
    // Shift, a Chinese character, and none.
    EXPECT_EQ(codeOf(0xffe1), std::nullopt);
    EXPECT_EQ(codeOf(0x1004e2d), std::nullopt);
    EXPECT_EQ(codeOf(0), std::nullopt);
    EXPECT_EQ(classicKey(56), nullptr);
    for (std::uint32_t code = 0; code < 256; ++code) {
        const ClassicKey* key = classicKey(code);
        EXPECT_EQ(codeOf(key == nullptr ? 0 : key->keysym).value_or(code), code);
    }
}

} // namespace
} // namespace tavik
