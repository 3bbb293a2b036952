#include "App/Support/FakeAccessibility.h"
#include "App/Support/FakePasteboard.h"
#include "Capture/CaptureError.h"
#include "Capture/DocumentURL.h"
#include "Capture/ScreenAnchor.h"
#include "Capture/SelectionCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <limits>
#include <stdexcept>

namespace tavik {
namespace {

using test::FakeElement;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr std::int64_t otherProcess = 4'000'000'000;

class SelectionCaptureTest : public testing::Test {
protected:
    SelectionCaptureTest() {
        workspace.front = {"编辑器", "org.example.editor", otherProcess, "", {}, {}};
        tree.systemWide = &desktop;
        tree.application = &application;
        application.has.describesPages = true;
        desktop.has.focusedUIElement = &focus;
    }

    CaptureResult capture() {
        return SelectionCapture({tree, workspace, pasteboard, processes,
                                 [this] { return isTrusted; },
                                 [this](const std::string& bundleID) { told.push_back(bundleID); }})
            .capture();
    }

    /// The error that a capture ends with.
    CaptureError failure() {
        try {
            const std::string text = capture().text;
            throw std::logic_error("captured " + text);
        } catch (const CaptureError& error) {
            return error;
        }
    }

    /// Makes `element` a text field in which "cat" is selected.
    static void selectIn(FakeElement& element, bool withSentence = true) {
        element.has.selectedText = u"cat";
        element.has.selectedTextRange = {{4, 3}};
        if (withSentence) element.has.value = u"The cat sat. It slept.";
    }

    /// Makes `element` a page in which "cat" is selected, alone in its text or not.
    static void selectMarkersIn(FakeElement& element, bool withSentence = true) {
        element.has.wholeText = withSentence ? u"One cat ran. It hid." : u"One cat";
        element.has.selectedMarkers = TextMarkerRange{element.ref(), {4, 3}};
        if (withSentence) element.has.paragraph = TextMarkerRange{element.ref(), {0, 20}};
    }

    test::FakeAccessibility tree;
    test::FakeWorkspace workspace;
    test::FakePasteboard pasteboard;
    test::FakeProcesses processes;
    FakeElement& desktop = tree.make("desktop");
    FakeElement& application = tree.make("app");
    FakeElement& focus = tree.make("focus");
    bool isTrusted = true;
    std::vector<std::string> told;
};

TEST_F(SelectionCaptureTest, withoutPermissionNobodyIsAsked) {
    isTrusted = false;
    EXPECT_EQ(failure().kind(), CaptureError::Kind::notTrusted);
    EXPECT_STREQ(failure().what(), "需要「辅助功能」权限才能读取选中的文字");
    EXPECT_THAT(tree.talk.calls, IsEmpty());
    EXPECT_EQ(failure().source().bundleID, "org.example.editor");
}

TEST_F(SelectionCaptureTest, aFieldIsReadStepByStepWithPlaceAndSource) {
    selectIn(focus);
    focus.has.selectedText = u" cat\n";
    focus.has.selectedTextRange = {{3, 5}};
    focus.has.url = "file:///home/me/notes.txt";
    focus.has.bounds = {{10, 80, 30, 20}};
    const CaptureResult expected{" cat\n",
                                 "The cat sat.",
                                 {"编辑器", "org.example.editor", "file:///home/me/notes.txt"},
                                 ScreenRect{10, 980, 30, 20},
                                 CaptureMethod::axText};
    EXPECT_EQ(capture(), expected);
    EXPECT_THAT(tree.talk.calls,
                ElementsAre("session(1500)", "application(4000000000)", "app.timeout(500)",
                            "app.describe", "desktop", "desktop.timeout(500)", "desktop.focus",
                            "focus.role", "focus.url", "focus.markers", "focus.selection",
                            "focus.range", "focus.value", "focus.bounds"));
    EXPECT_EQ(tree.lastFront->processIdentifier, otherProcess);
}

TEST_F(SelectionCaptureTest, theFocusIsThatOfDesktopOrApplicationOrThePageInItsWindow) {
    selectIn(focus);
    FakeElement& window = tree.make("window");
    application.has.focusedWindow = &window;
    FakeElement& page = tree.make("page", tree.makeChain(window, 39));
    page.has.role = AccessibleRole::webArea;
    tree.make("later", window).has.role = AccessibleRole::webArea;
    selectMarkersIn(page);
    selectIn(application);
    application.has.focusedUIElement = &application;
    EXPECT_EQ(capture().sentence, "The cat sat.");
    EXPECT_THAT(tree.talk.calls, Not(Contains("app.focus")));
    tree.talk.failing = {"desktop.focus"};
    EXPECT_EQ(capture().sentence, "The cat sat.");
    EXPECT_THAT(tree.talk.calls, Not(Contains("app.window")));
    application.has.focusedUIElement = nullptr;
    EXPECT_EQ(capture().sentence, "One cat ran.");
    EXPECT_THAT(tree.talk.calls, Not(Contains("later.role")));
}

TEST_F(SelectionCaptureTest, thePageIsSearchedForWithinBounds) {
    desktop.has.focusedUIElement = nullptr;
    FakeElement& window = tree.make("window");
    application.has.focusedWindow = &window;
    FakeElement& page = tree.make("page", tree.makeChain(window, 40));
    page.has.role = AccessibleRole::webArea;
    selectMarkersIn(page);
    EXPECT_EQ(failure().kind(), CaptureError::Kind::nothingSelected) << "41 levels below";
    // A tree without end.
    window.has.children = {&window, &window};
    tree.talk.calls.clear();
    EXPECT_EQ(failure().kind(), CaptureError::Kind::nothingSelected);
    EXPECT_LT(tree.talk.calls.size(), 10'000U);
}

TEST_F(SelectionCaptureTest, withoutAnApplicationInFrontTheFocusOfTheDesktopWillDo) {
    workspace.front.reset();
    selectIn(focus);
    EXPECT_EQ(capture().source, SourceInfo());
    EXPECT_EQ(tree.lastFront, std::nullopt);
    desktop.has.focusedUIElement = nullptr;
    EXPECT_EQ(failure().kind(), CaptureError::Kind::nothingSelected);
    for (const std::string& call : tree.talk.calls)
        EXPECT_THAT(call, Not(StartsWith("app"))) << call;
    workspace.isFailing = true;
    EXPECT_EQ(failure().source(), SourceInfo());
}

TEST_F(SelectionCaptureTest, tavikItselfIsReadButNotSwitchedOn) {
    workspace.front->processIdentifier = getpid();
    workspace.front->bundleIdentifier = "chromium";
    application.has.describesPages = false;
    selectIn(focus);
    EXPECT_EQ(capture().text, "cat");
    EXPECT_THAT(tree.talk.calls, Not(Contains("app.describe")));
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(SelectionCaptureTest, aBrowserThatDoesNotDescribeItsPagesNeedsItsOption) {
    selectIn(focus);
    workspace.front->bundleIdentifier = "Google-chrome-beta";
    EXPECT_EQ(capture().text, "cat");
    EXPECT_THAT(told, IsEmpty()) << "it does";
    application.has.describesPages = false;
    for (const char* const identifier :
         {"Google-chrome-beta", "com.google.Chrome.canary", "com.microsoft.edgemac",
          "com.brave.Browser", "company.thebrowser.Browser", "com.vivaldi.Vivaldi",
          "com.operasoftware.Opera", "Chromium", "chromium-browser", "Microsoft-edge",
          "Brave-browser", "Vivaldi-stable", "Opera"}) {
        workspace.front->bundleIdentifier = identifier;
        told.clear();
        EXPECT_EQ(capture().text, "cat");
        EXPECT_THAT(told, ElementsAre(identifier));
    }
    told.clear();
    tree.talk.failing = {"app.describe"};
    EXPECT_EQ(capture().text, "cat");
    EXPECT_THAT(told, IsEmpty()) << "it does not say";
    tree.application = nullptr;
    EXPECT_EQ(capture().text, "cat");
    EXPECT_THAT(told, ElementsAre("Opera")) << "it tells nothing of itself";
}

TEST_F(SelectionCaptureTest, noOptionIsNamedToOthersAndToBrowsersThatHang) {
    selectIn(focus);
    application.has.describesPages = false;
    for (const std::optional<std::string>& identifier :
         {std::optional<std::string>("firefox-esr"), std::optional<std::string>("my-chromium"),
          std::optional<std::string>()}) {
        workspace.front->bundleIdentifier = identifier;
        EXPECT_EQ(capture().text, "cat");
    }
    workspace.front->bundleIdentifier = "chromium";
    tree.talk.silent = "app.describe";
    EXPECT_EQ(failure().source().bundleID, "chromium");
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(SelectionCaptureTest, aPasswordFieldIsNotReadAtAll) {
    selectIn(focus);
    selectMarkersIn(focus);
    focus.has.role = AccessibleRole::passwordField;
    EXPECT_EQ(failure().kind(), CaptureError::Kind::nothingSelected);
    EXPECT_EQ(tree.talk.calls.back(), "focus.role");
    focus.has.role = AccessibleRole::terminal;
    EXPECT_EQ(capture().text, "cat");
    tree.talk.failing = {"focus.role"};
    EXPECT_EQ(capture().text, "cat");
}

TEST_F(SelectionCaptureTest, theFirstCandidateWithASentenceWins) {
    using Method = CaptureMethod;

    // Whether markers and attributes have a sentence, none of it, or no text at all.
    enum Found { none, text, sentence };

    struct Case {
        Found markers;
        Found attributes;
        Found below;
        std::optional<std::string> sentence;
        Method method;
        bool isSearched;
    };

    const std::vector<Case> cases{
        {sentence, sentence, sentence, "One cat ran.", Method::axMarker, false},
        {text, sentence, sentence, "The cat sat.", Method::axText, false},
        {sentence, text, sentence, "One cat ran.", Method::axMarker, false},
        {text, text, sentence, "Its own.", Method::axText, true},
        {text, none, text, std::nullopt, Method::axText, true},
        {text, none, none, std::nullopt, Method::axMarker, true},
        {none, none, sentence, "Its own.", Method::axText, true},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(std::to_string(&each - cases.data()));
        focus.has = {};
        FakeElement& below = tree.make("below", focus);
        if (each.markers != none) selectMarkersIn(focus, each.markers == sentence);
        if (each.attributes != none) selectIn(focus, each.attributes == sentence);
        if (each.below != none) {
            below.has.selectedText = u"own";
            below.has.selectedTextRange = {{4, 3}};
            if (each.below == sentence) below.has.value = u"Its own. Cats.";
        }
        tree.talk.calls.clear();
        const CaptureResult result = capture();
        EXPECT_EQ(result.sentence, each.sentence);
        EXPECT_EQ(result.method, each.method);
        EXPECT_EQ(result.text, each.isSearched && each.below != none ? "own" : "cat");
        EXPECT_EQ(testing::Value(tree.talk.calls, Contains("below.selection")), each.isSearched);
    }
}

TEST_F(SelectionCaptureTest, whiteSpaceIsNoSelectionAndTheFailureKnowsItsSource) {
    focus.has.url = "https://example.org/";
    focus.has.selectedText = u" \n\u3000\u2029\t";
    focus.has.selectedTextRange = {{0, 5}};
    focus.has.wholeText = u"  ";
    focus.has.selectedMarkers = TextMarkerRange{focus.ref(), {0, 2}};
    const CaptureError error = failure();
    EXPECT_EQ(error.kind(), CaptureError::Kind::nothingSelected);
    EXPECT_STREQ(error.what(), "没有读取到选中的文字");
    EXPECT_EQ(error.source(), (SourceInfo{"编辑器", "org.example.editor", "https://example.org/"}));
}

TEST_F(SelectionCaptureTest, theSearchBelowGoesTenLevelsAndThreeHundredChildrenFar) {
    FakeElement& tenth = tree.makeChain(focus, 10);
    FakeElement& eleventh = tree.make("eleventh", tenth);
    selectIn(eleventh);
    EXPECT_EQ(failure().kind(), CaptureError::Kind::nothingSelected);
    selectIn(tenth);
    EXPECT_EQ(capture().text, "cat");
    focus.has.children.clear();
    for (int i = 0; i < 301; ++i)
        selectIn(tree.make("child", focus));
    for (std::size_t i = 0; i < 300; ++i)
        focus.has.children[i]->has.selectedTextRange.reset();
    EXPECT_EQ(failure().kind(), CaptureError::Kind::nothingSelected) << "only the last tells where";
    selectIn(*focus.has.children[299]);
    EXPECT_EQ(capture().text, "cat");
    // What is below an element comes before its sibling.
    FakeElement& inner = tree.make("inner", *focus.has.children[0]);
    selectIn(inner);
    inner.has.value = u"An inner cat. More.";
    inner.has.selectedTextRange = {{9, 3}};
    EXPECT_EQ(capture().sentence, "An inner cat.");
}

TEST_F(SelectionCaptureTest, aTreeWithoutEndIsLeftWhenTheTimeIsUp) {
    focus.has.children.assign(300, &focus);
    focus.has.parent = &focus;
    tree.talk.answersLeft = 5000;
    EXPECT_EQ(failure().kind(), CaptureError::Kind::nothingSelected);
    EXPECT_LT(tree.talk.calls.size(), 20'000U);
}

TEST_F(SelectionCaptureTest, whateverFailsOnlyItsOwnRungIsLost) {
    selectIn(focus);
    selectMarkersIn(focus);
    focus.has.bounds = {{0, 0, 1, 1}};
    const CaptureResult byMarkers = capture();
    const std::vector<std::string> questions = tree.talk.calls;
    for (const std::string& question : questions) {
        SCOPED_TRACE(question);
        tree.talk.failing = {question};
        application.has.focusedUIElement = nullptr;
        if (question.starts_with("session") || question.starts_with("desktop"))
            application.has.focusedUIElement = &focus;
        if (question.starts_with("session"))
            EXPECT_EQ(failure().kind(), CaptureError::Kind::nothingSelected);
        else
            EXPECT_TRUE(capture().sentence);
    }
    tree.talk.failing = {"focus.markerString"};
    EXPECT_EQ(capture().sentence, "The cat sat.");
    EXPECT_EQ(byMarkers.sentence, "One cat ran.");
    tree.talk.failing.clear();
    workspace.isFailing = true;
    EXPECT_EQ(capture().anchor, std::nullopt);
}

TEST_F(SelectionCaptureTest, everyPointInTimeCanBeTheLast) {
    selectIn(focus, false);
    selectMarkersIn(focus, false);
    tree.make("below", focus);
    static_cast<void>(capture());
    const std::size_t count = tree.talk.calls.size();
    for (std::size_t answers = 0; answers < count; ++answers) {
        tree.talk.answersLeft = answers;
        try {
            EXPECT_EQ(capture().text, "cat");
        } catch (const CaptureError& error) {
            EXPECT_EQ(error.kind(), CaptureError::Kind::nothingSelected);
        }
    }
}

TEST(DocumentURL, isTheFirstAddressUpwardsOrTheDocumentOfTheWindow) {
    test::FakeAccessibility tree;
    FakeElement& window = tree.make("window");
    window.has.role = AccessibleRole::window;
    window.has.parent = &tree.make("beyond");
    window.has.parent->has.url = "https://beyond.example/";
    FakeElement& frame = tree.make("frame", window);
    FakeElement& leaf = tree.make("leaf", frame);
    const auto url = [&] { return documentURL(leaf.ref()); };
    EXPECT_EQ(url(), std::nullopt);
    window.has.document = "";
    EXPECT_EQ(url(), std::nullopt);
    window.has.document = "notes.txt";
    EXPECT_EQ(url(), "notes.txt");
    for (const char* const passedOver : {"about:blank", "chrome://settings/", "", "//a/b", "1:"}) {
        frame.has.url = passedOver;
        EXPECT_EQ(url(), "notes.txt") << passedOver;
    }
    for (const char* const address :
         {"http://a.example/", "HTTPS://a.example/?q=1#2", "httpx:a", "file:///tmp/a%20b.pdf"}) {
        frame.has.url = address;
        EXPECT_EQ(url(), address);
    }
    leaf.has.url = "https://inner.example/";
    EXPECT_EQ(url(), "https://inner.example/");
    EXPECT_EQ(documentURL(nullptr), std::nullopt);
}

TEST(DocumentURL, isLookedForInFortyElements) {
    test::FakeAccessibility tree;
    FakeElement& page = tree.make("page");
    page.has.url = "https://a.example/";
    FakeElement& fortieth = tree.makeChain(page, 39);
    EXPECT_EQ(documentURL(fortieth.ref()), "https://a.example/");
    EXPECT_EQ(documentURL(tree.make("far", fortieth).ref()), std::nullopt);
}

TEST(ScreenAnchor, turnsRectanglesOverAndRefusesNonsense) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double largest = std::numeric_limits<double>::max();
    test::FakeWorkspace workspace;
    test::FakePasteboard pasteboard;
    test::FakeProcesses processes;
    ScreenAnchor anchor(workspace);
    EXPECT_EQ(anchor.from(std::nullopt), std::nullopt);
    EXPECT_EQ(anchor.from(ScreenRect{5, 5, 5, 0}), std::nullopt);
    EXPECT_EQ(workspace.screenQuestions, 0) << "nothing to turn over yet";
    EXPECT_EQ(anchor.from(ScreenRect{2000, 100, 50, 20}), (ScreenRect{2000, 960, 50, 20}));
    EXPECT_EQ(anchor.from(ScreenRect{-5, 1100, 0, 10}), (ScreenRect{-5, -30, 0, 10}));
    for (const ScreenRect& rect : std::vector<ScreenRect>{{0, 0, -1, 5},
                                                          {0, 0, 5, -1},
                                                          {nan, 0, 1, 1},
                                                          {0, nan, 1, 1},
                                                          {0, 0, nan, 1},
                                                          {0, 0, 1, nan},
                                                          {infinite, 0, 1, 1},
                                                          {0, -infinite, 1, 1},
                                                          {0, 0, infinite, 1},
                                                          {0, largest, 1, largest}})
        EXPECT_EQ(anchor.from(rect), std::nullopt) << rect.x << ' ' << rect.y << ' ' << rect.width;
    EXPECT_EQ(workspace.screenQuestions, 1);
    workspace.shown = {{0, 200, 800, 600}};
    EXPECT_EQ(ScreenAnchor(workspace).from(ScreenRect{0, 300, 1, 20}), (ScreenRect{0, 480, 1, 20}));
    workspace.shown = {{0, 0, 800, nan}};
    EXPECT_EQ(ScreenAnchor(workspace).from(ScreenRect{0, 0, 1, 1}), std::nullopt);
    workspace.shown.clear();
    EXPECT_EQ(ScreenAnchor(workspace).from(ScreenRect{0, 0, 1, 1}), std::nullopt);
}

} // namespace
} // namespace tavik
