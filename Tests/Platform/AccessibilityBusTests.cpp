#include "Platform/Linux/DBus/AccessibilityBus.h"
#include "Platform/Support/BusTests.h"

namespace tavik {
namespace {

using namespace std::chrono_literals;
using State = AccessibilityTrust::State;

class AccessibilityBusTests : public test::BusTests {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(launcher)) GTEST_SKIP() << "this takes at-spi2-core";
        BusTests::SetUp();
    }

    void letGo() override { trust.reset(); }

    void make() { trust.emplace(open(), queue); }

    /// What the state becomes when it stops being the one that is given.
    State stateAfter(State state) {
        runUntil([&] { return trust->state().value() != state; });
        return trust->state().value();
    }

    /// With settings of its own, for it takes a switch back that it cannot keep. Without the
    /// display, to all of whose programs it would give its address.
    test::PrivateBus::Program startLauncher() {
        return apart([&] {
            return bus.start({"/usr/bin/env", "-u", "DISPLAY", "GSETTINGS_BACKEND=memory", launcher,
                              "--launch-immediately", "--a11y=1"},
                             "org.a11y.Bus");
        });
    }

    /// As another program does it.
    void turnSwitch(bool on) {
        apart([&] {
            bus.tell("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties.Set",
                     {"org.a11y.Status", "IsEnabled", on ? "<true>" : "<false>"});
        });
    }

    bool isSwitchOn() {
        return apart([&] {
            return bus.tell("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties.Get",
                            {"org.a11y.Status", "IsEnabled"})
                       .find("true")
                   != std::string::npos;
        });
    }

    /// Until it is answered.
    void restore() {
        const auto isDone = std::make_shared<bool>(false);
        trust->restore([isDone] { *isDone = true; });
        EXPECT_TRUE(runUntil([isDone] { return *isDone; }));
    }

    /// A bus whose switch is on and whose address is the one that is given.
    test::PrivateBus::Program startMock(const std::string& address) {
        return apart([&] {
            auto mock = bus.startMock("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus");
            bus.tell("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Mock.AddMethod",
                     {"org.a11y.Bus", "GetAddress", "", "s", "ret = '" + address + "'"});
            bus.tell("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Mock.AddProperty",
                     {"org.a11y.Status", "IsEnabled", "<true>"});
            return mock;
        });
    }

    std::chrono::milliseconds timeUntilKnown() {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(stateAfter(State::unknown), State::notTrusted);
        return std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - begin);
    }

    static constexpr auto launcher = "/usr/libexec/at-spi-bus-launcher";
    std::optional<AccessibilityBus> trust;
};

TEST_F(AccessibilityBusTests, trustFollowsTheSwitchThatAnotherProgramTurns) {
    const auto launcher = startLauncher();
    make();
    EXPECT_EQ(trust->state().value(), State::unknown);
    EXPECT_EQ(stateAfter(State::unknown), State::trusted);
    turnSwitch(false);
    EXPECT_EQ(stateAfter(State::trusted), State::notTrusted);
    turnSwitch(true);
    EXPECT_EQ(stateAfter(State::notTrusted), State::trusted);
}

TEST_F(AccessibilityBusTests, enablingTurnsTheSwitchOn) {
    const auto launcher = startLauncher();
    turnSwitch(false);
    make();
    EXPECT_EQ(stateAfter(State::unknown), State::notTrusted);
    trust->enable();
    EXPECT_EQ(stateAfter(State::notTrusted), State::trusted);
}

TEST_F(AccessibilityBusTests, onlyWhatWasOffBeforeIsSwitchedOffAgain) {
    const auto launcher = startLauncher();
    make();
    stateAfter(State::unknown);
    trust->enable();
    restore();
    EXPECT_TRUE(isSwitchOn()) << "it was on before";
    turnSwitch(false);
    stateAfter(State::trusted);
    trust->enable();
    restore();
    EXPECT_FALSE(isSwitchOn()) << "also where nobody knows yet that it was switched on";
    trust->enable();
    stateAfter(State::notTrusted);
    restore();
    EXPECT_FALSE(isSwitchOn());
}

TEST_F(AccessibilityBusTests, whatSomebodyElseSwitchedMeanwhileStays) {
    const auto launcher = startLauncher();
    turnSwitch(false);
    make();
    stateAfter(State::unknown);
    trust->enable();
    stateAfter(State::notTrusted);
    turnSwitch(false);
    stateAfter(State::trusted);
    turnSwitch(true);
    stateAfter(State::notTrusted);
    restore();
    EXPECT_TRUE(isSwitchOn());
}

TEST_F(AccessibilityBusTests, aBusThatComesLateAndGoesIsFollowed) {
    make();
    EXPECT_LT(timeUntilKnown(), 500ms);
    auto launcher = startLauncher();
    EXPECT_EQ(stateAfter(State::notTrusted), State::trusted);
    end(launcher);
    EXPECT_EQ(stateAfter(State::trusted), State::notTrusted);
    launcher = startLauncher();
    EXPECT_EQ(stateAfter(State::notTrusted), State::trusted);
    apart([&] { bus.end(); });
    EXPECT_EQ(stateAfter(State::trusted), State::notTrusted);
}

TEST_F(AccessibilityBusTests, whoNeverAnswersIsNotTrustedAfterASecond) {
    const auto hung = startDaemon({"name-hung", "org.a11y.Bus"});
    make();
    trust->enable();
    EXPECT_LT(timeUntilKnown(), 1200ms);
}

TEST_F(AccessibilityBusTests, aSessionBusThatNeverAnswersIsNotTrustedAfterASecond) {
    bus.signal(SIGSTOP);
    make();
    EXPECT_LT(timeUntilKnown(), 1200ms);
    trust->enable();
    runForAWhile();
}

TEST_F(AccessibilityBusTests, anAddressWhereNobodyAnswersOrNoneIsIsNotTrusted) {
    const test::PrivateBus other;
    auto mock = startMock(other.address());
    other.signal(SIGSTOP);
    make();
    EXPECT_LT(timeUntilKnown(), 1200ms);
    other.signal(SIGCONT);
    EXPECT_EQ(stateAfter(State::notTrusted), State::trusted); // It was slow, not hung.
    end(mock);
    EXPECT_EQ(stateAfter(State::trusted), State::notTrusted);
    mock = startMock("unixexec:path=/bin/false");
    runForAWhile();
    EXPECT_EQ(trust->state().value(), State::notTrusted);
}

} // namespace
} // namespace tavik
