#include "App/Support/FakeAccessibility.h"
#include "App/Support/FakePasteboard.h"
#include "Capture/CaptureProbe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace tavik {
namespace {

using test::FakeElement;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr std::int64_t probed = 4'000'000'000;

/// One application, whose window is not in front.
class CaptureProbeTest : public testing::Test {
protected:
    CaptureProbeTest() {
        workspace.running = {{"编辑器", "org.example.editor", probed, "", {}, {}}};
        tree.systemWide = &desktop;
        tree.application = &application;
        desktop.has.focusedUIElement = &elsewhere;
        selectIn(elsewhere);
        application.has.describesPages = true;
        application.has.focusedUIElement = &focus;
        application.has.focusedWindow = &window;
    }

    /// Whatever is found, nothing is copied.
    void TearDown() override { EXPECT_THAT(pasteboard.calls, Each(Not(StartsWith("lend")))); }

    ProbeRecord probe(const std::stop_token& stop = {}) {
        const ProbePorts ports{tree, workspace, pasteboard, processes, isTrusted, trustedSince};
        return CaptureProbe(ports).run(stop).at(0);
    }

    ProbeAdvice advice() { return probe().advice; }

    void makeChromium() {
        workspace.running[0].bundleIdentifier = "google-chrome";
        application.has.describesPages = false;
    }

    static void selectIn(FakeElement& element) {
        element.has.selectedText = u"cat";
        element.has.selectedTextRange = {{4, 3}};
        element.has.value = u"The cat sat. It slept.";
        element.has.bounds = ScreenRect{10, 10, 30, 20};
    }

    test::FakeAccessibility tree;
    test::FakeWorkspace workspace;
    test::FakePasteboard pasteboard;
    test::FakeProcesses processes;
    FakeElement& desktop = tree.make("desktop");
    FakeElement& elsewhere = tree.make("elsewhere");
    FakeElement& application = tree.make("app");
    FakeElement& window = tree.make("window");
    FakeElement& focus = tree.make("focus");
    bool isTrusted = true;
    std::optional<Date> trustedSince;
};

TEST_F(CaptureProbeTest, aFieldIsReadWhereTheApplicationItselfHasTheFocus) {
    selectIn(focus);
    focus.has.selectedText = u"e\u0301te\u0301";
    const ProbeRecord record = probe();
    EXPECT_EQ(record.reader, ProbeReader::axText);
    EXPECT_EQ(record.selectedCharacters, 3U) << "as people count them";
    EXPECT_TRUE(record.hasSentence && record.hasPlace && record.hasSelection.value_or(false));
    EXPECT_TRUE(record.isOnAccessibilityBus && record.describesPages.value_or(false));
    EXPECT_EQ(record.advice, ProbeAdvice::none);
    EXPECT_THAT(record.steps, ElementsAre(testing::Field(&ProbeStep::hasText, false),
                                          testing::Field(&ProbeStep::hasText, true)));
    EXPECT_THAT(tree.talk.calls, Not(Contains(StartsWith("elsewhere."))));
    EXPECT_THAT(pasteboard.calls, IsEmpty());
    EXPECT_EQ(tree.lastFront->processIdentifier, probed);
}

TEST_F(CaptureProbeTest, aPageIsReadByItsMarkersUnlessAFieldInItKnowsMore) {
    focus.has.role = AccessibleRole::webArea;
    focus.has.wholeText = u"One cat ran. It hid.";
    focus.has.selectedMarkers = TextMarkerRange{focus.ref(), {4, 3}};
    EXPECT_EQ(probe().reader, ProbeReader::axMarker);
    EXPECT_FALSE(probe().hasSentence);
    selectIn(focus);
    EXPECT_EQ(probe().reader, ProbeReader::axText);
    focus.has.paragraph = TextMarkerRange{focus.ref(), {0, 20}};
    EXPECT_EQ(probe().reader, ProbeReader::axMarker);
    EXPECT_TRUE(probe().hasSentence);
}

TEST_F(CaptureProbeTest, aWindowThatDoesNotTellItsFocusIsSearchedWithinBounds) {
    application.has.focusedUIElement = nullptr;
    FakeElement& menu = tree.make("menu", window);
    menu.has.role = AccessibleRole::menu;
    tree.make("item", menu);
    FakeElement& field = tree.make("field", tree.makeChain(window, 5));
    selectIn(field);
    EXPECT_EQ(probe().reader, ProbeReader::axText);
    application.has.focusedUIElement = &focus;
    EXPECT_EQ(probe().reader, ProbeReader::axText) << "the focus is no text";
    focus.has.numberOfCharacters = 10;
    EXPECT_EQ(probe().reader, ProbeReader::none) << "the focus is a text without a selection";
    application.has.focusedUIElement = nullptr;
    field.has.selectedText = std::nullopt;
    field.add(window);
    EXPECT_EQ(probe().advice, ProbeAdvice::selectSomething);
    EXPECT_LT(tree.talk.calls.size(), 20'000U);
    EXPECT_THAT(tree.talk.calls, Not(Contains(StartsWith("item."))));
}

TEST_F(CaptureProbeTest, whatIsLeftIsTheLastSelectionOrACopy) {
    pasteboard.selection = "cat";
    const ProbeRecord copied = probe();
    EXPECT_EQ(copied.reader, ProbeReader::clipboard);
    EXPECT_EQ(copied.advice, ProbeAdvice::clipboardOnly);
    EXPECT_EQ(copied.selectedCharacters, 3U);
    EXPECT_FALSE(copied.hasSentence);
    focus.has.numberOfCharacters = 10;
    EXPECT_EQ(probe().hasSelection, false) << "what the desktop keeps is old";
    processes.holdsTerminal = true;
    EXPECT_EQ(probe().reader, ProbeReader::selection);
    EXPECT_EQ(advice(), ProbeAdvice::useSelection);
    tree.application = nullptr;
    pasteboard.selection = " \n";
    EXPECT_EQ(probe().reader, ProbeReader::none);
    EXPECT_EQ(probe().hasSelection, std::nullopt);
    EXPECT_EQ(advice(), ProbeAdvice::useSelection);
    processes.holdsTerminal = false;
    EXPECT_EQ(probe().reader, ProbeReader::clipboard) << "a copy may still tell";
}

TEST_F(CaptureProbeTest, whoIsNotOnTheBusIsStartedAgainUnlessThatWouldNotHelp) {
    tree.application = nullptr;
    EXPECT_EQ(advice(), ProbeAdvice::restart);
    trustedSince = dateFromSeconds(1000);
    EXPECT_EQ(advice(), ProbeAdvice::restart) << "nobody knows when it was started";
    processes.startTimes[probed] = dateFromSeconds(1001);
    EXPECT_EQ(advice(), ProbeAdvice::clipboardOnly);
    processes.startTimes[probed] = dateFromSeconds(999);
    EXPECT_EQ(advice(), ProbeAdvice::restart);
    isTrusted = false;
    tree.talk.calls.clear();
    EXPECT_EQ(advice(), ProbeAdvice::clipboardOnly);
    EXPECT_THAT(tree.talk.calls, IsEmpty());
}

TEST_F(CaptureProbeTest, browsersThatNeedAnOptionAreToldOfItUnlessTheyHaveIt) {
    makeChromium();
    EXPECT_EQ(advice(), ProbeAdvice::startOption);
    pasteboard.selection = "cat";
    EXPECT_EQ(probe().reader, ProbeReader::clipboard);
    EXPECT_EQ(advice(), ProbeAdvice::startOption);
    tree.application = nullptr;
    EXPECT_EQ(advice(), ProbeAdvice::startOption);
    processes.commands[probed] = {"chrome --force-renderer-accessibility --x"};
    EXPECT_EQ(advice(), ProbeAdvice::restart);
}

TEST_F(CaptureProbeTest, passwordsAndProgramsThatHangAreLeftAlone) {
    focus.has.role = AccessibleRole::passwordField;
    pasteboard.selection = "secret";
    const ProbeRecord secret = probe();
    EXPECT_EQ(secret.advice, ProbeAdvice::passwordField);
    EXPECT_EQ(secret.reader, ProbeReader::none);
    EXPECT_EQ(secret.selectedCharacters, 0U);
    makeChromium();
    tree.talk.silent = "app.describe";
    EXPECT_EQ(advice(), ProbeAdvice::notResponding);
    tree.talk.calls.clear();
    processes.isStopping = true;
    EXPECT_EQ(advice(), ProbeAdvice::notResponding);
    EXPECT_THAT(tree.talk.calls, IsEmpty());
    EXPECT_THAT(pasteboard.calls, IsEmpty());
}

TEST_F(CaptureProbeTest, everyApplicationHasARecordInOrderButThisOne) {
    processes.isStopping = true;
    workspace.running.clear();
    for (std::int64_t process = 1; process <= 50; ++process)
        workspace.running.push_back({std::nullopt, std::to_string(process), process, "", {}, {}});
    workspace.running[0].processIdentifier = getpid();
    const CaptureProbe probe({tree, workspace, pasteboard, processes});
    const auto records = probe.run();
    ASSERT_EQ(records.size(), 49U);
    EXPECT_EQ(records.front().identifier, "2");
    EXPECT_EQ(records.back().identifier, "50");
    EXPECT_THAT(records, Each(testing::Field(&ProbeRecord::advice, ProbeAdvice::notResponding)));
    std::stop_source stop;
    stop.request_stop();
    const auto stopped = probe.run(stop.get_token());
    ASSERT_EQ(stopped.size(), 49U);
    EXPECT_THAT(stopped, Each(testing::Field(&ProbeRecord::advice, ProbeAdvice::notAsked)));
}

} // namespace
} // namespace tavik
