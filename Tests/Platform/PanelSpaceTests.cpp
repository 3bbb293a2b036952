#include "Platform/Linux/X11/PanelSpace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace tavik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Numbers = std::vector<std::uint32_t>;

constexpr auto highest = std::numeric_limits<std::uint32_t>::max();

/// Two monitors side by side, the right one smaller.
const ScreenRect leftOne{0, 0, 1920, 1080};
const ScreenRect rightOne{1920, 0, 1280, 1024};
const ScreenRect wide{0, 0, 3200, 1080};

/// Two monitors, one above the other.
const ScreenRect upperOne{0, 0, 1920, 1080};
const ScreenRect lowerOne{320, 1080, 1280, 1024};
const ScreenRect high{0, 0, 1920, 2104};

std::vector<Strut> strutsOf(const std::vector<Numbers>& all) {
    std::vector<Strut> struts;
    for (const Numbers& numbers : all)
        if (const auto strut = strutOf(numbers)) struts.push_back(*strut);
    return struts;
}

ScreenRect leftWithout(const Numbers& numbers) {
    return withoutStruts(leftOne, strutsOf({numbers}), wide);
}

ScreenRect rightWithout(const Numbers& numbers) {
    return withoutStruts(rightOne, strutsOf({numbers}), wide);
}

TEST(StrutTests, aPanelTakesFromTheMonitorAtWhoseEdgeItStands) {
    const Numbers atLeftTop{0, 0, 30, 0, 0, 0, 0, 0, 0, 1919, 0, 0};
    EXPECT_EQ(leftWithout(atLeftTop), (ScreenRect{0, 30, 1920, 1050}));
    EXPECT_EQ(rightWithout(atLeftTop), rightOne);
    const Numbers atRightTop{0, 0, 30, 0, 0, 0, 0, 0, 1920, 3199, 0, 0};
    EXPECT_EQ(leftWithout(atRightTop), leftOne);
    EXPECT_EQ(rightWithout(atRightTop), (ScreenRect{1920, 30, 1280, 994}));
    const Numbers atFarLeft{50, 0, 0, 0, 0, 1079, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(leftWithout(atFarLeft), (ScreenRect{50, 0, 1870, 1080}));
    EXPECT_EQ(rightWithout(atFarLeft), rightOne);
    const Numbers atFarRight{0, 60, 0, 0, 0, 0, 0, 1023, 0, 0, 0, 0};
    EXPECT_EQ(leftWithout(atFarRight), leftOne);
    EXPECT_EQ(rightWithout(atFarRight), (ScreenRect{1920, 0, 1220, 1024}));
}

TEST(StrutTests, depthIsCountedFromTheEdgeOfTheDesktopAndNotOfTheMonitor) {
    const Numbers belowShorter{0, 0, 0, 96, 0, 0, 0, 0, 0, 0, 1920, 3199};
    EXPECT_EQ(rightWithout(belowShorter), (ScreenRect{1920, 0, 1280, 984}));
    EXPECT_EQ(leftWithout(belowShorter), leftOne);
    const Numbers reachesTallerOnly{0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 3199};
    EXPECT_EQ(leftWithout(reachesTallerOnly), (ScreenRect{0, 0, 1920, 1040}));
    EXPECT_EQ(rightWithout(reachesTallerOnly), rightOne);
    const Numbers betweenMonitors{1984, 0, 0, 0, 0, 1023, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(rightWithout(betweenMonitors), (ScreenRect{1984, 0, 1216, 1024}));
    EXPECT_EQ(leftWithout(betweenMonitors), leftOne) << "it would take all of it";
}

TEST(StrutTests, monitorsMayStandOneAboveTheOther) {
    const auto struts = strutsOf({{0, 0, 28, 0, 0, 0, 0, 0, 0, 1919, 0, 0},
                                  {0, 0, 0, 48, 0, 0, 0, 0, 0, 0, 320, 1599},
                                  {0, 1064, 0, 0, 0, 0, 0, 500, 0, 0, 0, 0},
                                  {400, 0, 0, 0, 1080, 2103, 0, 0, 0, 0, 0, 0}});
    EXPECT_EQ(withoutStruts(lowerOne, struts, high), (ScreenRect{400, 1080, 1200, 976}));
    EXPECT_EQ(withoutStruts(upperOne, struts, high), (ScreenRect{0, 28, 1920, 1052}));
}

TEST(StrutTests, ofSeveralPanelsAtAnEdgeTheDeepestCounts) {
    const auto struts = strutsOf({{0, 0, 30, 0}, {0, 0, 50, 20}, {10, 5, 40, 0}});
    EXPECT_EQ(withoutStruts({0, 0, 800, 600}, struts, {0, 0, 800, 600}),
              (ScreenRect{10, 50, 785, 530}));
}

TEST(StrutTests, absurdNumbersTakeNothing) {
    EXPECT_EQ(strutOf({}), std::nullopt);
    EXPECT_EQ(strutOf({0, 0, 30}), std::nullopt);
    EXPECT_EQ(strutOf({0, 0, 30, 0, 0, 0}), std::nullopt);
    EXPECT_EQ(strutOf(Numbers(12)), std::nullopt);
    EXPECT_EQ(leftWithout({0, 0, highest, highest}), leftOne);
    EXPECT_EQ(leftWithout({0, 0, 541, 0}), leftOne);
    EXPECT_EQ(leftWithout({0, 0, 540, 0}), (ScreenRect{0, 540, 1920, 540}));
    EXPECT_EQ(leftWithout({0, 0, 30, 0, 0, 0, 0, 0, 1919, 0, 0, 0}), leftOne) << "ends first";
    EXPECT_EQ(leftWithout({0, 0, 30, 0, 0, 0, 0, 0, highest, highest, 0, 0}), leftOne);
    EXPECT_EQ(leftWithout({30, 0, 0, 0, 0, highest, 0, 0, 0, 0, 0, 0}),
              (ScreenRect{30, 0, 1890, 1080}));
}

TEST(StrutTests, areasOfMonitorsAreToldApartByTheirPlace) {
    const auto areas = areasOf({1920, 32, 1280, 992, 0, 0, 1920, 1040, 7, 7, 7});
    EXPECT_THAT(areas, ElementsAre(ScreenRect{1920, 32, 1280, 992}, ScreenRect{0, 0, 1920, 1040}));
    EXPECT_EQ(withinArea(leftOne, areas), (ScreenRect{0, 0, 1920, 1040}));
    EXPECT_EQ(withinArea(rightOne, areas), (ScreenRect{1920, 32, 1280, 992}));
    EXPECT_EQ(withinArea(lowerOne, areas), lowerOne) << "none is meant for it";
    EXPECT_EQ(withinArea(leftOne, areasOf({0, 0, 1920, 10})), leftOne);
    EXPECT_EQ(withinArea(leftOne, areasOf({highest - 9, highest - 9, 1000, 2000})),
              (ScreenRect{0, 0, 990, 1080}));
    EXPECT_THAT(areasOf({1, 2, 3}), IsEmpty());
}

} // namespace
} // namespace tavik
