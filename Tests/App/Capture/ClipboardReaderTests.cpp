#include "App/Support/FakeAccessibility.h"
#include "App/Support/FakePasteboard.h"
#include "Capture/CaptureError.h"
#include "Capture/SelectionCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavik {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// An application that tells where its focus is, but nothing of its text.
class ClipboardReaderTest : public testing::Test {
protected:
    ClipboardReaderTest() {
        workspace.front = {"阅读器", "reader", 4'000'000'000, "", {}, {}};
        tree.systemWide = &desktop;
        tree.application = &application;
        application.has.describesPages = true;
        desktop.has.focusedUIElement = &focus;
        pasteboard.copied = "cat";
        pasteboard.selection = "dog";
    }

    /// Nothing where nothing counts as selected.
    std::optional<CaptureResult> capture() {
        pasteboard.calls.clear();
        try {
            return SelectionCapture({tree, workspace, pasteboard, processes, [] { return true; },
                                     [](const std::string&) {}})
                .capture();
        } catch (const CaptureError& error) {
            EXPECT_EQ(error.kind(), CaptureError::Kind::nothingSelected);
            return std::nullopt;
        }
    }

    std::string text() {
        const auto result = capture();
        return result ? result->text : "nothing";
    }

    test::FakeAccessibility tree;
    test::FakeWorkspace workspace;
    test::FakePasteboard pasteboard;
    test::FakeProcesses processes;
    test::FakeElement& desktop = tree.make("desktop");
    test::FakeElement& application = tree.make("app");
    test::FakeElement& focus = tree.make("focus");
};

TEST_F(ClipboardReaderTest, whatNobodyDescribesIsCopiedWithItsSourceAlone) {
    focus.has.url = "https://example.org/";
    pasteboard.copied = " a cat\n";
    const CaptureResult expected{" a cat\n",
                                 std::nullopt,
                                 {"阅读器", "reader", "https://example.org/"},
                                 std::nullopt,
                                 CaptureMethod::clipboard};
    EXPECT_EQ(capture(), expected);
    EXPECT_THAT(pasteboard.calls,
                ElementsAre("lend(reader)", "copy", "await(300)", "string", "end"));
    tree.talk.failing = {"session(1500)"};
    EXPECT_EQ(text(), " a cat\n") << "without accessibility at all";
    tree.talk.failing.clear();
    desktop.has.focusedUIElement = nullptr;
    EXPECT_EQ(text(), " a cat\n") << "without a focus";
}

TEST_F(ClipboardReaderTest, whatIsDescribedIsNotCopied) {
    focus.has.selectedText = u"bird";
    EXPECT_EQ(text(), "bird");
    EXPECT_THAT(pasteboard.calls, IsEmpty());
    focus.has.selectedText = u" \n";
    EXPECT_EQ(text(), "cat") << "blank is no text";
}

TEST_F(ClipboardReaderTest, aCopyThatBringsNothingIsNoSelection) {
    for (const auto& copied : {std::optional<std::string>(), std::optional<std::string>(""),
                               std::optional<std::string>(" \t\n\u3000\u2029")}) {
        pasteboard.copied = copied;
        EXPECT_FALSE(capture());
        EXPECT_EQ(pasteboard.calls.back(), "end");
    }
    pasteboard.copied = "cat";
    pasteboard.takesKeys = false;
    EXPECT_FALSE(capture());
    EXPECT_THAT(pasteboard.calls, ElementsAre("lend(reader)", "copy", "end"));
    pasteboard.canBeLent = false;
    EXPECT_FALSE(capture());
    EXPECT_THAT(pasteboard.calls, ElementsAre("lend(reader)"));
}

TEST_F(ClipboardReaderTest, whateverFailsTheLoanEnds) {
    EXPECT_EQ(text(), "cat");
    for (const std::string question : {"lend(reader)", "copy", "await(300)", "string"}) {
        pasteboard.failing = question;
        EXPECT_FALSE(capture()) << question;
        EXPECT_EQ(pasteboard.calls.back(), question.starts_with("lend") ? question : "end");
    }
    processes.holdsTerminal = true;
    pasteboard.failing = "selection(reader)";
    EXPECT_FALSE(capture());
}

TEST_F(ClipboardReaderTest, aTerminalGetsNoKeys) {
    const auto expectNoKeys = [this](const std::string& what) {
        EXPECT_EQ(text(), "dog") << what;
        EXPECT_THAT(pasteboard.calls, ElementsAre("selection(" + what + ')'));
    };
    for (const std::string identifier :
         {"XTerm", "org.gnome.Terminal", "jetbrains-idea", "Gvim", "Remmina"}) {
        workspace.front->bundleIdentifier = identifier;
        expectNoKeys(identifier);
    }
    workspace.front->bundleIdentifier = "reader";
    focus.has.role = AccessibleRole::terminal;
    expectNoKeys("reader");
    focus.has.role.reset();
    processes.holdsTerminal = true;
    expectNoKeys("reader");
    pasteboard.selection = " ";
    EXPECT_FALSE(capture());
    EXPECT_THAT(pasteboard.calls, Not(Contains("copy")));
    pasteboard.selection.reset();
    EXPECT_FALSE(capture());
    EXPECT_THAT(pasteboard.calls, Not(Contains("copy")));
}

TEST_F(ClipboardReaderTest, passwordsAndProgramsThatDoNotAnswerAreLeftAlone) {
    const auto expectLeftAlone = [this](const char* what) {
        EXPECT_FALSE(capture()) << what;
        EXPECT_THAT(pasteboard.calls, IsEmpty()) << what;
    };
    focus.has.role = AccessibleRole::passwordField;
    expectLeftAlone("a password");
    processes.holdsTerminal = true;
    expectLeftAlone("a password in a terminal");
    focus.has.role.reset();
    processes.isStopping = true;
    expectLeftAlone("a stopped program");
    processes = {};
    tree.talk.silent = "focus.role";
    expectLeftAlone("a program that did not answer");
    tree.talk.silent.clear();
    tree.talk.hasTimedOut = false;
    workspace.front.reset();
    expectLeftAlone("nobody in front");
    workspace.isFailing = true;
    expectLeftAlone("nobody knows");
}

TEST_F(ClipboardReaderTest, whereASelectionIsKnownTheLastOneIsNoOldOne) {
    focus.has.selectedTextRange = {{4, 3}};
    EXPECT_EQ(text(), "dog");
    EXPECT_THAT(pasteboard.calls, ElementsAre("selection(reader)"));
    pasteboard.selection = "\n";
    EXPECT_EQ(text(), "cat") << "then copy";
    focus.has.selectedTextRange = {{4, 0}};
    pasteboard.selection = "dog";
    EXPECT_EQ(text(), "cat") << "a caret alone";
    EXPECT_THAT(pasteboard.calls, Not(Contains("selection(reader)")));
    focus.has.selectedMarkers = TextMarkerRange{focus.ref(), {4, 3}};
    EXPECT_EQ(text(), "dog") << "in a page";
}

} // namespace
} // namespace tavik
