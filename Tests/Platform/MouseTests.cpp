#include "Platform/Linux/X11/X11Mouse.h"
#include "Platform/Qt/QtMainQueue.h"
#include "Platform/Support/LoopWatch.h"
#include "Platform/Support/XClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace tavik {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Presses = std::vector<ScreenPoint>;

/// Where nobody else clicks.
constexpr ScreenPoint marker{3, 2};

class MouseTests : public testing::Test {
protected:
    Subscription observe(Presses& presses) {
        return mouse->observePresses([&presses](ScreenPoint where) { presses.push_back(where); });
    }

    void click(std::int16_t x, std::int16_t y, std::uint8_t button = 1) const {
        user.movePointer(x, y);
        user.clickButton(button);
    }

    /// Stays there until it is told: the place is asked for a moment after the press.
    void clickTold(const Presses& presses, std::int16_t x, std::int16_t y,
                   std::uint8_t button = 1) {
        const auto before = presses.size();
        click(x, y, button);
        EXPECT_TRUE(loop.runUntil([&] { return presses.size() > before; }));
    }

    void clickMarker() const {
        click(static_cast<std::int16_t>(marker.x), static_cast<std::int16_t>(marker.y));
    }

    /// What has been told by now, without the markers.
    Presses settled(Presses& presses) {
        presses.clear();
        return settledSince(presses);
    }

    Presses settledSince(Presses& presses) {
        const auto count = [&] { return std::ranges::count(presses, marker); };
        const auto before = count();
        // The server hears of a new observer late.
        for (int tries = 0; count() == before; ++tries) {
            if (tries == 100) throw std::runtime_error("no press was told");
            clickMarker();
            loop.runUntil([&] { return count() > before; }, 100ms);
        }
        Presses told = presses;
        std::erase(told, marker);
        return told;
    }

    xcb_window_t addWindow(std::int16_t x, std::int16_t y) const {
        const xcb_window_t window = xcb_generate_id(user.connection());
        const std::vector<std::uint32_t> values{1, XCB_EVENT_MASK_BUTTON_PRESS};
        xcb_create_window(user.connection(), XCB_COPY_FROM_PARENT, window, user.root(), x, y, 100,
                          100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
        xcb_map_window(user.connection(), window);
        user.sync();
        return window;
    }

    test::XClient user;
    test::LoopWatch loop;
    QtMainQueue queue;
    std::unique_ptr<X11Mouse> mouse = std::make_unique<X11Mouse>(queue);
};

TEST_F(MouseTests, pressesOfTheTwoButtonsAreToldWhereverTheyAre) {
    Presses presses;
    const auto subscription = observe(presses);
    settled(presses);
    addWindow(200, 200);
    clickTold(presses, 400, 300);
    clickTold(presses, 250, 260);
    clickTold(presses, 251, 261, 3);
    for (const std::uint8_t button : std::vector<std::uint8_t>{2, 4, 5, 8})
        click(252, 262, button);
    EXPECT_THAT(settledSince(presses),
                ElementsAre(ScreenPoint{400, 300}, ScreenPoint{250, 260}, ScreenPoint{251, 261}));
    int seenByWindow = 0;
    while (const auto event = user.nextEvent(100ms))
        seenByWindow += (event->response_type & 0x7f) == XCB_BUTTON_PRESS ? 1 : 0;
    EXPECT_EQ(seenByWindow, 6) << "the presses took their course";
}

TEST_F(MouseTests, whoHoldsThePointerDoesNotHideThem) {
    Presses presses;
    const auto subscription = observe(presses);
    settled(presses);
    const auto request = xcb_grab_pointer(
        user.connection(), 0, addWindow(200, 200), XCB_EVENT_MASK_BUTTON_PRESS, XCB_GRAB_MODE_ASYNC,
        XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    const XCBReply<xcb_grab_pointer_reply_t> reply(
        xcb_grab_pointer_reply(user.connection(), request, nullptr));
    ASSERT_EQ(reply->status, XCB_GRAB_STATUS_SUCCESS);
    clickTold(presses, 400, 300);
    clickTold(presses, 250, 250, 3);
    EXPECT_THAT(settledSince(presses), ElementsAre(ScreenPoint{400, 300}, ScreenPoint{250, 250}));
    xcb_ungrab_pointer(user.connection(), XCB_CURRENT_TIME);
    user.sync();
}

TEST_F(MouseTests, aPressThatIsOnItsWayIsForNobodyWhoEndsOrBegins) {
    Presses first;
    Presses second;
    auto subscription = observe(first);
    settled(first);
    first.clear();
    click(400, 300);
    std::this_thread::sleep_for(200ms);
    subscription = {};
    const auto other = observe(second);
    EXPECT_THAT(settledSince(second), IsEmpty());
    clickTold(second, 401, 301);
    EXPECT_THAT(settledSince(second), ElementsAre(ScreenPoint{401, 301}));
    EXPECT_THAT(first, IsEmpty());
}

TEST_F(MouseTests, observersMayEndEachOtherAndTheMouse) {
    Presses second;
    Subscription other;
    const auto subscription = mouse->observePresses([&](ScreenPoint) { other = {}; });
    Presses third;
    const auto last = observe(third);
    settled(third);
    other = observe(second);
    settledSince(third);
    EXPECT_THAT(second, IsEmpty());
    clickMarker();
    std::this_thread::sleep_for(200ms);
    const auto told = third.size();
    mouse.reset();
    loop.runFor(50ms);
    EXPECT_EQ(third.size(), told);
}

} // namespace
} // namespace tavik
