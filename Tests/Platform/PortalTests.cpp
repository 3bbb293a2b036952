#include "Platform/Linux/DBus/PortalAppearance.h"
#include "Platform/Linux/DBus/PortalHotKey.h"
#include "Platform/Linux/DBus/ShortcutTrigger.h"
#include "Platform/Support/BusTests.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <thread>

namespace tavik {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

constexpr std::uint32_t d = 2;
constexpr std::uint32_t f5 = 96;
constexpr std::uint32_t noKey = 55;
constexpr std::uint32_t option = 0x800;
constexpr std::uint32_t allModifiers = 0x100 | 0x200 | 0x800 | 0x1000;

const std::string bindAltD = "BindShortcuts lookup ALT+d 划词查询";

/// On the real portal with a backend of ours, or on a portal of ours.
class PortalTests : public test::BusTests {
protected:
    /// Tells the backend something; returns what it answers, as JSON.
    std::string tell(const std::vector<std::string>& words) {
        return apart([&] { return command(words); });
    }

    /// The same, where the main loop does not run before.
    std::string command(const std::vector<std::string>& words) const {
        std::string list;
        for (const std::string& word : words)
            list.append(list.empty() ? "" : ", ").append("'" + word + "'");
        return bus.tell("com.tavik.TestPortal", "/", "com.tavik.TestPortal.Command",
                        {"[" + list + "]"});
    }

    /// What was asked of the backend since the last time.
    std::vector<std::string> calls() {
        const std::string answer = tell({"calls"});
        const auto begin = answer.find('[');
        return nlohmann::json::parse(answer.substr(begin, answer.rfind(']') + 1 - begin));
    }

    /// The same, once `last` has been asked.
    std::vector<std::string> callsUntil(const std::string& last) {
        std::vector<std::string> all;
        EXPECT_TRUE(runUntil([&] {
            const auto more = calls();
            all.insert(all.end(), more.begin(), more.end());
            return !all.empty() && all.back() == last;
        })) << testing::PrintToString(all);
        return all;
    }
};

class PortalHotKeyTests : public PortalTests {
protected:
    void letGo() override { hotKey.reset(); }

    void make() {
        hotKey.emplace(*thread, bus.address(), queue);
        hotKey->setOnPress([this] { ++presses; });
    }

    /// Made, with the combination asked for and bound.
    void makeBound() {
        make();
        EXPECT_FALSE(hotKey->registerHotKey(d, option));
        EXPECT_TRUE(becomes(true));
    }

    bool becomes(bool isRegistered) {
        return runUntil([&] { return hotKey->isRegistered().value() == isRegistered; });
    }

    bool staysUnregistered() {
        runForAWhile();
        return !hotKey->isRegistered().value();
    }

    bool pressesBecome(int count) {
        return runUntil([&] { return presses >= count; }) && presses == count;
    }

    std::optional<PortalHotKey> hotKey;
    int presses = 0;
};

TEST_F(PortalHotKeyTests, aCombinationIsOursOnceTheUserHasAgreedAndUntilItIsGivenUp) {
    const auto backend = startDaemon({"portal-backend"});
    const auto portal = startDaemon({"portal"});
    tell({"answer", "later"});
    make();
    EXPECT_FALSE(hotKey->registerHotKey(d, option));
    EXPECT_THAT(callsUntil(bindAltD), ElementsAre("CreateSession", bindAltD));
    EXPECT_TRUE(staysUnregistered());
    EXPECT_TRUE(hotKey->isAsking().value());
    tell({"answer", "0"});
    EXPECT_TRUE(becomes(true));
    EXPECT_FALSE(hotKey->isAsking().value());
    tell({"press", "1"});
    EXPECT_TRUE(pressesBecome(1));
    hotKey->unregisterHotKey();
    EXPECT_FALSE(hotKey->isRegistered().value());
    callsUntil("Close Session");
    EXPECT_TRUE(staysUnregistered());
    EXPECT_FALSE(hotKey->registerHotKey(f5, 0));
    EXPECT_TRUE(becomes(true));
    calls();
    hotKey.reset();
    EXPECT_THAT(callsUntil("Close Session"), ElementsAre("Close Session"));
}

TEST_F(PortalHotKeyTests, whatTheUserDeclinesOrThePortalDoesNotBindIsNotOursUntilAskedForAnew) {
    const auto backend = startDaemon({"portal-backend"});
    auto portal = startDaemon({"portal"});
    make();
    for (const auto* const answer : {"2", "3", "1"}) {
        tell({"answer", answer});
        EXPECT_FALSE(hotKey->registerHotKey(d, option));
        callsUntil("Close Session");
        EXPECT_TRUE(staysUnregistered()) << answer;
        EXPECT_FALSE(hotKey->isAsking().value()) << answer;
    }
    tell({"answer", "0"});
    end(portal);
    portal = startDaemon({"portal"});
    EXPECT_TRUE(staysUnregistered()) << "the user is not asked twice";
    EXPECT_THAT(calls(), testing::IsEmpty());
    EXPECT_FALSE(hotKey->registerHotKey(d, option));
    EXPECT_TRUE(becomes(true));
}

TEST_F(PortalHotKeyTests, aNewerCombinationSupersedesAQuestionThatIsOpenOrABoundOne) {
    const auto backend = startDaemon({"portal-backend"});
    const auto portal = startDaemon({"portal"});
    tell({"answer", "later"});
    make();
    EXPECT_FALSE(hotKey->registerHotKey(d, option));
    callsUntil(bindAltD);
    EXPECT_FALSE(hotKey->registerHotKey(f5, allModifiers));
    // The real portal closes in threads of its own.
    const std::string bindF5 = "BindShortcuts lookup CTRL+ALT+SHIFT+LOGO+F5 划词查询";
    EXPECT_THAT(callsUntil(bindF5),
                UnorderedElementsAre("Close Request", "Close Session", "CreateSession", bindF5));
    tell({"answer", "0"});
    EXPECT_TRUE(becomes(true));
    EXPECT_FALSE(hotKey->registerHotKey(d, option));
    EXPECT_FALSE(hotKey->isRegistered().value());
    EXPECT_TRUE(becomes(true));
    EXPECT_THAT(calls(), UnorderedElementsAre("Close Session", "CreateSession", bindAltD));
    EXPECT_FALSE(hotKey->registerHotKey(noKey, option));
    EXPECT_FALSE(hotKey->isRegistered().value());
    callsUntil("Close Session");
}

TEST_F(PortalHotKeyTests, combinationsInQuickSuccessionLeaveOneSessionWithTheLastOne) {
    const auto mock = startDaemon({"portal-mock"});
    make();
    EXPECT_FALSE(hotKey->registerHotKey(f5, 0));
    EXPECT_FALSE(hotKey->registerHotKey(f5, option));
    EXPECT_FALSE(hotKey->registerHotKey(d, option));
    EXPECT_TRUE(becomes(true));
    EXPECT_THAT(calls(), ElementsAre("Register com.tavik.app", "CreateSession", bindAltD));
    EXPECT_FALSE(hotKey->registerHotKey(f5, 0));
    hotKey->unregisterHotKey();
    EXPECT_TRUE(staysUnregistered());
    const auto sessions = calls();
    EXPECT_EQ(std::ranges::count(sessions, "Close Session"),
              1 + std::ranges::count(sessions, "CreateSession"));
}

TEST_F(PortalHotKeyTests, newsOfAnEarlierCombinationThatIsUnderWayIsPassedOver) {
    const auto mock = startDaemon({"portal-mock"});
    tell({"answer", "later"});
    make();
    EXPECT_FALSE(hotKey->registerHotKey(f5, 0));
    callsUntil("BindShortcuts lookup F5 划词查询");
    const auto whileTheMainThreadIsBusy = [&](const std::vector<std::string>& words) {
        apart([&] {
            command(words);
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            command({"answer", "later"});
        });
    };
    int changes = 0;
    const auto observation = hotKey->isRegistered().observe([&](bool) { ++changes; });
    whileTheMainThreadIsBusy({"answer", "0"});
    EXPECT_FALSE(hotKey->registerHotKey(d, option));
    callsUntil(bindAltD);
    EXPECT_EQ(changes, 0);
    tell({"answer", "0"});
    EXPECT_TRUE(becomes(true));
    whileTheMainThreadIsBusy({"press", "1"});
    hotKey->unregisterHotKey();
    runForAWhile();
    EXPECT_EQ(presses, 0);
    EXPECT_EQ(changes, 2);
}

TEST_F(PortalHotKeyTests, aSessionThatTheDesktopClosesOrAPortalThatGoesTakesItAway) {
    const auto backend = startDaemon({"portal-backend"});
    auto portal = startDaemon({"portal"});
    makeBound();
    tell({"close"});
    EXPECT_TRUE(becomes(false));
    EXPECT_FALSE(hotKey->registerHotKey(d, option));
    EXPECT_TRUE(becomes(true));
    end(portal);
    EXPECT_TRUE(becomes(false));
    portal = startDaemon({"portal"});
    EXPECT_TRUE(becomes(true));
    tell({"press", "1"});
    EXPECT_TRUE(pressesBecome(1));
    apart([&] { bus.end(); });
    EXPECT_TRUE(becomes(false));
}

TEST_F(PortalHotKeyTests, everyPressOfOurShortcutCountsOnce) {
    const auto mock = startDaemon({"portal-mock"});
    makeBound();
    for (const auto& [what, time] : std::vector<std::pair<std::string, std::string>>{
             {"press-other", "1"}, {"press-elsewhere", "2"}, {"press", "3"}, {"press", "3"}})
        tell({what, time});
    EXPECT_TRUE(pressesBecome(1));
    tell({"press", "4"});
    EXPECT_TRUE(pressesBecome(2));
    tell({"release", "4"});
    tell({"press", "4"});
    EXPECT_TRUE(pressesBecome(3)) << "a desktop whose clock stands still";
    hotKey->setOnPress([this] { hotKey->setOnPress({}); });
    tell({"press", "5"});
    tell({"press", "6"});
    runForAWhile();
    EXPECT_EQ(presses, 3);
}

TEST_F(PortalHotKeyTests, aPortalThatWantsToKnowWhoWeAreIsToldFirstAndOnce) {
    auto mock = startDaemon({"portal-mock"});
    makeBound();
    EXPECT_THAT(calls(), ElementsAre("Register com.tavik.app", "CreateSession", bindAltD));
    EXPECT_FALSE(hotKey->registerHotKey(d, option));
    EXPECT_TRUE(becomes(true));
    EXPECT_THAT(calls(), ElementsAre("Close Session", "CreateSession", bindAltD));
    end(mock);
    mock = startDaemon({"portal-mock"});
    EXPECT_TRUE(becomes(true));
    EXPECT_THAT(calls(), ElementsAre("Register com.tavik.app", "CreateSession", bindAltD));
}

TEST_F(PortalHotKeyTests, withoutShortcutsNothingIsOursAndAPortalMayComeLate) {
    make();
    EXPECT_FALSE(hotKey->registerHotKey(d, option));
    EXPECT_TRUE(staysUnregistered());
    const auto backend = startDaemon({"portal-backend"});
    auto portal = startDaemon({"portal-no-shortcuts"});
    EXPECT_TRUE(staysUnregistered());
    end(portal);
    portal = startDaemon({"portal"});
    EXPECT_TRUE(becomes(true));
}

TEST_F(PortalHotKeyTests, aPortalThatNeverAnswersAndABusThatIsNotThereAreNotFelt) {
    const auto hung = startDaemon({"name-hung", "org.freedesktop.portal.Desktop"});
    make();
    EXPECT_FALSE(hotKey->registerHotKey(d, option));
    EXPECT_FALSE(hotKey->registerHotKey(f5, option));
    EXPECT_TRUE(staysUnregistered());
    apart([&] { bus.end(); });
    make();
    EXPECT_FALSE(hotKey->registerHotKey(d, option));
    EXPECT_TRUE(staysUnregistered());
}

class PortalAppearanceTests : public PortalTests {
protected:
    void letGo() override { appearance.reset(); }

    void make() { appearance.emplace(open(), queue); }

    bool becomes(bool isDark) {
        return runUntil([&] { return appearance->prefersDark().value() == isDark; });
    }

    bool stays(bool isDark) {
        runForAWhile();
        return appearance->prefersDark().value() == isDark;
    }

    std::optional<PortalAppearance> appearance;
};

TEST_F(PortalAppearanceTests, darkWindowsAreWantedFromTheStartOrFromAChangeOn) {
    const auto backend = startDaemon({"portal-backend"});
    tell({"color", "u", "1"});
    const auto portal = startDaemon({"portal"});
    make();
    EXPECT_FALSE(appearance->prefersDark().value());
    EXPECT_TRUE(becomes(true));
    tell({"color", "u", "2"});
    EXPECT_TRUE(becomes(false));
    tell({"color", "u", "1"});
    EXPECT_TRUE(becomes(true));
    tell({"color", "s", "light"});
    EXPECT_TRUE(stays(true)) << "of an unknown type";
    tell({"color", "u", "0"});
    EXPECT_TRUE(becomes(false));
}

TEST_F(PortalAppearanceTests, aPortalIsAskedWhenItComesLateAndWhenItWasStartedAnew) {
    make();
    EXPECT_TRUE(stays(false));
    auto mock = startDaemon({"portal-mock"});
    tell({"color", "u", "1"});
    EXPECT_TRUE(becomes(true));
    end(mock);
    EXPECT_TRUE(stays(true)) << "nobody has told otherwise";
    mock = startDaemon({"portal-mock"});
    EXPECT_TRUE(becomes(false));
    end(mock);
    const auto hung = startDaemon({"name-hung", "org.freedesktop.portal.Desktop"});
    make();
    EXPECT_TRUE(stays(false));
    apart([&] { bus.end(); });
    make();
    EXPECT_TRUE(stays(false));
}

TEST(ShortcutTriggerTests, modifiersStandBeforeTheKeyAndWhatIsNoKeyHasNone) {
    EXPECT_EQ(shortcutTrigger(d, option), "ALT+d");
    EXPECT_EQ(shortcutTrigger(f5, allModifiers), "CTRL+ALT+SHIFT+LOGO+F5");
    EXPECT_EQ(shortcutTrigger(f5, 0x20000), "F5") << "bits of other masks";
    EXPECT_EQ(shortcutTrigger(noKey, option), std::nullopt);
}

} // namespace
} // namespace tavik
