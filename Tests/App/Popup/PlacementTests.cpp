#include "UI/Popup/PopupPlacement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace tavik {
namespace {

constexpr ScreenRect visible{0, 40, 1280, 736};
constexpr PopupSize size{400, 200};

TEST(PopupPlacement, itStandsBelowTheSelectionOrAboveWhereThereIsNoRoom) {
    const auto placed = [](const ScreenRect& anchor) {
        return PopupPlacement::place(size, anchor, {}, visible);
    };
    EXPECT_EQ(placed({300, 500, 60, 20}), (ScreenRect{288, 292, 400, 200}));
    EXPECT_EQ(placed({300, 248, 60, 20}), (ScreenRect{288, 48, 400, 200})) << "just fits";
    EXPECT_EQ(placed({300, 247, 60, 20}), (ScreenRect{288, 275, 400, 200})) << "above";
    EXPECT_EQ(placed({1200, 500, 60, 20}).x, 1280 - 8 - 400) << "at the right edge";
    EXPECT_EQ(placed({4, 500, 60, 20}).x, 8) << "at the left edge";
    const auto byMouse = PopupPlacement::place(size, std::nullopt, {600, 500}, visible);
    EXPECT_EQ(byMouse, (ScreenRect{580, 284, 400, 200}));
    EXPECT_EQ(PopupPlacement::place(size, std::nullopt, {600, 60}, visible).y, 76);
}

TEST(PopupPlacement, whatIsTooLargeKeepsItsTopAndRightEdges) {
    const auto placed =
        PopupPlacement::place({1400, 900}, ScreenRect{300, 500, 60, 20}, {}, visible);
    EXPECT_EQ(placed.x + placed.width, 1280 - 8);
    EXPECT_EQ(placed.y + placed.height, 776 - 8);
}

TEST(PopupPlacement, aNewSizeKeepsTheTopUnlessItHangsOut) {
    const ScreenRect present{100, 300, 400, 200};
    EXPECT_EQ(PopupPlacement::refit(present, {400, 260}, visible),
              (ScreenRect{100, 240, 400, 260}));
    EXPECT_EQ(PopupPlacement::refit(present, {400, 480}, visible), (ScreenRect{100, 48, 400, 480}));
}

/// Monitors with panels, next to each other or one above the other, in one unit.
struct Layout {
    std::vector<ScreenRect> frames;
    std::vector<ScreenRect> visible;
};

class Chance {
public:
    explicit Chance(unsigned seed) : engine(seed) {}

    double between(double low, double high) {
        return std::uniform_real_distribution(low, high)(engine);
    }

    Layout layout() {
        Layout made;
        double x = between(-4000, 0);
        double y = between(-2000, 0);
        const bool isRow = between(0, 1) < 0.6;
        for (int left = static_cast<int>(between(1, 4.99)); left > 0; --left) {
            const double scale = between(1, 3);
            const ScreenRect frame{x, y, between(800, 5120) / scale, between(600, 2880) / scale};
            made.frames.push_back(frame);
            const double below = between(0, 60);
            const double beside = between(0, 1) < 0.3 ? between(0, 80) : 0;
            made.visible.push_back({frame.x + beside, frame.y + below, frame.width - beside,
                                    frame.height - below - between(0, 40)});
            (isRow ? x : y) += isRow ? frame.width : frame.height;
        }
        return made;
    }

private:
    std::mt19937 engine;
};

bool isInside(const ScreenRect& inner, const ScreenRect& outer) {
    constexpr double rounding = 1e-6;
    return inner.x >= outer.x + 8 - rounding && inner.y >= outer.y + 8 - rounding
           && inner.x + inner.width <= outer.x + outer.width - 8 + rounding
           && inner.y + inner.height <= outer.y + outer.height - 8 + rounding;
}

/// One axis as the rules have it, written down a second time.
double bounded(double value, double first, double last, double length) {
    double place = value;
    if (place < first + 8) place = first + 8;
    if (place > last - length - 8) place = last - length - 8;
    return place;
}

TEST(PopupPlacement, onAnyDesktopItLiesWithinOneScreenWhereItFits) {
    Chance chance(20261122);
    for (int run = 0; run < 10'000; ++run) {
        const Layout layout = chance.layout();
        const PopupSize popup{chance.between(200, 900), chance.between(60, 900)};
        const ScreenRect anchor{chance.between(-5000, 12'000), chance.between(-3000, 8000),
                                chance.between(0, 900), chance.between(1, 300)};
        const bool hasAnchor = chance.between(0, 1) < 0.7;
        const ScreenPoint point{anchor.x, anchor.y};
        const auto chosen = PopupPlacement::screenAt(layout.frames, point);
        ASSERT_TRUE(chosen);
        const ScreenRect& area = layout.visible[*chosen];
        const ScreenRect placed = PopupPlacement::place(
            popup, hasAnchor ? std::optional(anchor) : std::nullopt, point, area);
        const bool fits = popup.width + 16 <= area.width && popup.height + 16 <= area.height;
        ASSERT_EQ(isInside(placed, area), fits) << "run " << run;
        double y = hasAnchor ? anchor.y - 8 - popup.height : point.y - 16 - popup.height;
        if (y < area.y) y = hasAnchor ? anchor.y + anchor.height + 8 : point.y + 16;
        ASSERT_DOUBLE_EQ(placed.x, bounded(point.x - (hasAnchor ? 12 : 20), area.x,
                                           area.x + area.width, popup.width));
        ASSERT_DOUBLE_EQ(placed.y, bounded(y, area.y, area.y + area.height, popup.height));
        const ScreenRect grown =
            PopupPlacement::refit(placed, {popup.width, popup.height + 200}, area);
        ASSERT_GE(grown.y, area.y + 8 - 1e-9);
    }
}

TEST(PopupPlacement, thePointChoosesTheScreenElseTheFirst) {
    const std::vector<ScreenRect> frames{{0, 0, 100, 100}, {100, 0, 100, 100}};
    EXPECT_EQ(PopupPlacement::screenAt(frames, {99.9, 0}), 0U);
    EXPECT_EQ(PopupPlacement::screenAt(frames, {100, 50}), 1U);
    EXPECT_EQ(PopupPlacement::screenAt(frames, {50, 100}), 0U) << "outside all";
    EXPECT_EQ(PopupPlacement::screenAt({}, {0, 0}), std::nullopt);
}

} // namespace
} // namespace tavik
