#include "Capture/CaptureError.h"
#include "Capture/SelectionCapture.h"
#include "Platform/Linux/AtSpi/AtSpiAccessibility.h"
#include "Platform/Linux/Process/ProcProcesses.h"
#include "Platform/Linux/X11/X11Pasteboard.h"
#include "Platform/Linux/X11/X11Workspace.h"
#include "Platform/Support/ClipboardOwner.h"
#include "Platform/Support/ClipboardRequestor.h"
#include "Platform/Support/Daemon.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <future>
#include <sstream>
#include <thread>

namespace tavik {
namespace {

using namespace std::chrono_literals;
using test::ClipboardOwner;
using test::ClipboardRequestor;
using test::Contents;
using test::Manners;
using test::Offer;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using Clock = std::chrono::steady_clock;
using Words = std::vector<std::string>;

/// What is granted beyond a limit to a machine that is busy.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr auto grace = 1500ms;
#else
constexpr auto grace = 400ms;
#endif
constexpr auto patience = 15s;
constexpr auto answerLimit = 300ms;

bool eventually(const std::function<bool()>& isSo, std::chrono::milliseconds limit = patience) {
    for (const auto end = Clock::now() + limit; !isSo(); std::this_thread::sleep_for(5ms))
        if (Clock::now() > end) return false;
    return true;
}

/// Whether it is so now, and still after a while.
bool stays(const std::function<bool()>& isSo) {
    for (const auto end = Clock::now() + 300ms; Clock::now() < end;
         std::this_thread::sleep_for(5ms))
        if (!isSo()) return false;
    return true;
}

std::optional<std::string> noName(const std::string& /*identifier*/,
                                  const std::string& /*windowClass*/) {
    return std::nullopt;
}

/// The application in front, once it is that of the process.
FrontApplication awaitFront(pid_t process) {
    X11Workspace workspace(noName);
    FrontApplication front;
    const bool isInFront = eventually([&] {
        front = workspace.frontApplication().value_or(FrontApplication());
        return front.processIdentifier == process && front.window != 0;
    });
    if (!isInFront) throw std::runtime_error("the window does not come to the front");
    return front;
}

/// The program of Platform/Support/CopyTargetMain.cpp, with its window in front.
class Target {
public:
    explicit Target(Words options = {})
        : program(commandOf(std::move(options)), folder.file("output")) {
        test::awaitText("ready", folder.file("output"));
        application = awaitFront(program.id());
        // A window manager tells who is in front before or after it gives him the keyboard.
        test::XClient user;
        eventually([&] { return user.focus() == application.window; });
    }

    void signal(int number) const { program.signal(number); }

    std::string output() const { return test::readFile(folder.file("output")); }

    void await(const std::string& text) const { test::awaitText(text, folder.file("output")); }

    /// How often it has taken the clipboard.
    std::ptrdiff_t copies() const { return std::ranges::count(lines(), "took"); }

    /// Every key that has come to it by now; it must be in front.
    Words keys() const {
        test::XClient user;
        user.pressKey("Shift_L");
        user.releaseKey("Shift_L");
        await("release Shift_L");
        Words found = lines();
        std::erase_if(found, [](const std::string& line) {
            return !line.starts_with("press ") && !line.starts_with("release ");
        });
        found.erase(std::ranges::find(found, "press Shift_L 0"), found.end());
        return found;
    }

    FrontApplication application;

private:
    static Words commandOf(Words options) {
        options.insert(options.begin(), TAVIK_COPY_TARGET);
        return options;
    }

    Words lines() const {
        Words found;
        std::istringstream text(output());
        for (std::string line; std::getline(text, line);)
            found.push_back(line);
        return found;
    }

    test::TemporaryDirectory folder;
    test::BackgroundProgram program;
};

/// Some of it more than `size`.
std::string repeated(std::string_view part, std::size_t size) {
    std::string text;
    while (text.size() < size)
        text += part;
    return text;
}

/// Thirty forms of one content.
std::vector<Offer> manyOffers() {
    using namespace std::string_literals;
    std::vector<Offer> offers = test::textOffers("what lay there: 剪贴板");
    offers.insert(offers.end(),
                  {{"text/html", "text/html", 8, "<b>what lay there</b>"},
                   {"TEXT", "COMPOUND_TEXT", 8, "\x1b%Gwhat\x1b%@"},
                   {"empty", "STRING", 8, ""},
                   {"binary", "application/octet-stream", 8, "\0\1\xff\0\n\0"s},
                   {"atoms", "ATOM", 32, "\1\0\0\0\2\0\0\0\3\0\0\0"s},
                   {"numbers", "INTEGER", 32, "\xff\xff\xff\xff\0\0\0\x80"s},
                   {"short numbers", "INTEGER", 16, "\1\2\3\4\5\6"s},
                   {"image/png", "image/png", 8, repeated("\x89PNG\0\r\n"s, 1'048'576)},
                   {"many numbers", "CARDINAL", 32, repeated("\1\2\3\4\5\6\7\x08"s, 400'000)},
                   {"many short numbers", "CARDINAL", 16, repeated("\1\2\3\4\5\6"s, 300'000)}});
    while (offers.size() < 30)
        offers.push_back({"form " + std::to_string(offers.size()), "STRING", 8,
                          repeated("form", offers.size() * 100)});
    return offers;
}

Contents contentsOf(const std::vector<Offer>& offers) {
    Contents contents;
    for (const Offer& offer : offers)
        contents.emplace(offer.target, test::Conversion{offer.type, offer.format, offer.bytes});
    return contents;
}

using Loan = std::unique_ptr<PasteboardLoan>;

class PasteboardTest : public testing::Test {
protected:
    void SetUp() override {
        // Tavik leaves behind what it has put back.
        test::XClient nobody;
        xcb_set_selection_owner(nobody.connection(), XCB_NONE, nobody.atom("CLIPBOARD"),
                                XCB_CURRENT_TIME);
        nobody.sync();
    }

    void TearDown() override {
        for (const char* const key : {"d", "Alt_L", "c", "Control_L"})
            user.releaseKey(key);
    }

    /// A machine that is busy may not save a large content in time at once.
    Loan lend(const Target& target) {
        Loan loan;
        eventually([&] { return (loan = pasteboard->lend(target.application)) != nullptr; });
        if (loan == nullptr) throw std::runtime_error("the clipboard is not lent");
        return loan;
    }

    std::optional<std::string> copyFrom(const Target& target) {
        const Loan loan = lend(target);
        EXPECT_TRUE(loan->copy());
        EXPECT_TRUE(loan->awaitChange(patience));
        return loan->string();
    }

    /// Whether that text comes to lie on the clipboard, and then stays there.
    bool comes(const std::string& text) {
        return eventually([&] { return requestor.text() == text; });
    }

    bool comesAndStays(const std::string& text) {
        return comes(text) && stays([&] { return requestor.text() == text; });
    }

    void pressCopy() {
        user.pressKey("Control_L");
        user.pressKey("c");
        user.releaseKey("c");
        user.releaseKey("Control_L");
    }

    test::XClient user;
    ClipboardRequestor requestor;
    std::optional<X11Pasteboard> pasteboard{std::in_place};
};

TEST_F(PasteboardTest, whatIsCopiedIsReadAndWhatLayThereLiesThereAgainByteForByte) {
    const auto offers = manyOffers();
    const ClipboardOwner owner(offers);
    const test::TemporaryDirectory folder;
    const std::string large = repeated("A long text: 一篇长文。\n", 700'000) + " Its end.";
    test::writeFile(folder.file("text"), large);
    for (const auto& [option, text] : std::vector<std::pair<Words, std::string>>{
             {{"text=ephemeral"}, "ephemeral"},
             {{"text= 😀 短暂的\n\tday "}, " 😀 短暂的\n\tday "},
             {{"latin=caf\xe9"}, "café"},
             {{"text=@" + folder.file("text")}, large}}) {
        const Target target(option);
        EXPECT_TRUE(copyFrom(target) == text) << option.front();
        EXPECT_TRUE(comes("what lay there: 剪贴板"));
        EXPECT_TRUE(requestor.contents() == contentsOf(offers)) << option.front();
    }
    EXPECT_TRUE(requestor.contentsAtOnce() == contentsOf(offers));
    EXPECT_EQ(owner.losses(), 1);
}

TEST_F(PasteboardTest, twentyMegabytesAreGivenBackToTwoAtOnceAndOneMayDieMeanwhile) {
    const std::vector<Offer> offers{
        {"image/bmp", "image/bmp", 8, repeated("twenty megabytes of an image", 20'000'000)},
        {"UTF8_STRING", "UTF8_STRING", 8, "an image"}};
    const Target target({"text=ephemeral"});
    {
        const ClipboardOwner owner(offers);
        EXPECT_EQ(copyFrom(target), "ephemeral");
    }
    EXPECT_TRUE(comes("an image"));
    ClipboardRequestor other;
    auto dying = std::make_unique<ClipboardRequestor>();
    for (ClipboardRequestor* each : {&requestor, &other, dying.get()})
        each->begin("image/bmp");
    for (int part = 0; dying->next(); ++part) {
        requestor.next();
        if (part == 1) break;
    }
    dying.reset();
    // At different speeds.
    while (requestor.next())
        for (int part = 0; part < 3; ++part)
            other.next();
    while (other.next()) {
    }
    EXPECT_TRUE(requestor.received() == other.received());
    EXPECT_TRUE(other.received() == contentsOf(offers).at("image/bmp"));
    EXPECT_TRUE(comes("an image"));
}

TEST_F(PasteboardTest, whereNothingLayNothingLiesAfterwards) {
    ASSERT_EQ(requestor.owner(), XCB_NONE);
    const Target target({"text=ephemeral"});
    EXPECT_EQ(copyFrom(target), "ephemeral");
    EXPECT_TRUE(eventually([&] { return requestor.owner() == XCB_NONE; }));
}

TEST_F(PasteboardTest, whatTheApplicationItselfHadCopiedIsGivenBackToo) {
    const Target target({"clipboard=from here", "text=ephemeral"});
    for (int i = 0; i < 10; ++i)
        ASSERT_EQ(copyFrom(target), "ephemeral");
    EXPECT_TRUE(comes("from here"));
    EXPECT_EQ(target.copies(), 10);
}

TEST_F(PasteboardTest, whereNothingIsCopiedTheClipboardIsLeftToItsOwner) {
    auto offers = manyOffers();
    const auto contents = contentsOf(offers);
    offers.push_back({"GTK_TEXT_BUFFER_CONTENTS", "GTK_TEXT_BUFFER_CONTENTS", 8, "pointers"});
    const ClipboardOwner owner(offers);
    const Target target;
    {
        const Loan loan = lend(target);
        EXPECT_TRUE(loan->copy());
        const auto begin = Clock::now();
        EXPECT_FALSE(loan->awaitChange(answerLimit));
        EXPECT_GE(Clock::now() - begin, answerLimit);
        EXPECT_LT(Clock::now() - begin, answerLimit + grace);
    }
    EXPECT_THAT(target.keys(), ElementsAre("press Control_L 0", "press c 4", "release c 4",
                                           "release Control_L 4"));
    EXPECT_EQ(owner.losses(), 0);
    EXPECT_EQ(requestor.owner(), owner.window());
    EXPECT_EQ(owner.requests("GTK_TEXT_BUFFER_CONTENTS"), 0);
    auto found = requestor.contents();
    found.erase("GTK_TEXT_BUFFER_CONTENTS");
    EXPECT_EQ(found, contents);
}

TEST_F(PasteboardTest, whatCannotBeSavedIsNotPutAtRisk) {
    const std::vector<Offer> offers{{"UTF8_STRING", "UTF8_STRING", 8, "text"},
                                    {"image/png", "image/png", 8, repeated("png", 1'000'000)},
                                    {"text/html", "text/html", 8, "<p>"}};
    const Target target({"text=ephemeral"});
    for (const Manners& manners :
         {Manners{.ignored = {"TARGETS"}}, Manners{.ignored = {"text/html"}},
          Manners{.delay = 700ms}, Manners{.isEndless = true}, Manners{.isStalling = true},
          Manners{.isLying = true}}) {
        const ClipboardOwner owner(offers, manners);
        const auto begin = Clock::now();
        EXPECT_EQ(pasteboard->lend(target.application), nullptr);
        EXPECT_LT(Clock::now() - begin, 1s + grace);
        EXPECT_EQ(owner.losses(), 0);
    }
    const ClipboardOwner owner(offers, {.refused = {"image/png"}});
    EXPECT_EQ(copyFrom(target), "ephemeral") << "of what is refused there is nothing to save";
    EXPECT_TRUE(comes("text"));
    EXPECT_EQ(target.keys().size(), 4U);
}

TEST_F(PasteboardTest, whatIsCopiedLateOrTwiceIsUndoneToo) {
    const auto offers = test::textOffers("before");
    const ClipboardOwner owner(offers);
    {
        const Target target({"text=ephemeral", "after=1000"});
        {
            const Loan loan = lend(target);
            EXPECT_TRUE(loan->copy());
            EXPECT_FALSE(loan->awaitChange(answerLimit));
        }
        target.await("took");
        EXPECT_TRUE(comes("before"));
    }
    const Target target({"text=ephemeral", "again=600"});
    EXPECT_EQ(copyFrom(target), "ephemeral");
    EXPECT_TRUE(comes("before"));
    EXPECT_TRUE(eventually([&] { return target.copies() == 2; }));
    EXPECT_TRUE(comes("before"));
    EXPECT_TRUE(stays([&] { return requestor.contents() == contentsOf(offers); }));
}

TEST_F(PasteboardTest, whatTheUserOrAnotherProgramCopiesStays) {
    const ClipboardOwner owner(test::textOffers("before"));
    const Target target({"text=ephemeral", "after=200"});
    EXPECT_EQ(copyFrom(target), "ephemeral");
    EXPECT_TRUE(comes("before"));
    const ClipboardOwner other(test::textOffers("other"));
    EXPECT_TRUE(comesAndStays("other")) << "by another program";
    EXPECT_EQ(copyFrom(target), "ephemeral");
    EXPECT_TRUE(comes("other"));
    pressCopy();
    EXPECT_TRUE(comesAndStays("ephemeral")) << "by keys";
}

TEST_F(PasteboardTest, aLateAnswerIsUndoneAlsoWhenTheHotKeyWasPressedAgain) {
    const ClipboardOwner owner(test::textOffers("before"));
    const Target target({"text=ephemeral", "after=1000"});
    {
        const Loan loan = lend(target);
        EXPECT_TRUE(loan->copy());
        EXPECT_FALSE(loan->awaitChange(answerLimit));
    }
    for (const char* const key : {"Alt_L", "d"})
        user.pressKey(key);
    static_cast<void>(lend(target));
    for (const char* const key : {"d", "Alt_L"})
        user.releaseKey(key);
    target.await("took");
    EXPECT_TRUE(comesAndStays("before"));
}

TEST_F(PasteboardTest, whatIsCopiedElsewhereBeforeTheKeysStays) {
    const ClipboardOwner owner(test::textOffers("before"));
    const Target target({"text=ephemeral"});
    std::optional<ClipboardOwner> other;
    {
        const Loan loan = lend(target);
        other.emplace(test::textOffers("other"));
        EXPECT_FALSE(loan->copy());
    }
    EXPECT_TRUE(comesAndStays("other"));
    EXPECT_THAT(target.keys(), IsEmpty());
}

TEST_F(PasteboardTest, aCopyByAMenuStays) {
    const ClipboardOwner owner(test::textOffers("before"));
    const Target target({"text=ephemeral", "again=1500"});
    EXPECT_EQ(copyFrom(target), "ephemeral");
    EXPECT_TRUE(comes("before"));
    user.clickButton();
    EXPECT_TRUE(comesAndStays("ephemeral"));
}

TEST_F(PasteboardTest, keysThatTheUserHoldsDownDoNotGetInTheWay) {
    const Target target({"text=ephemeral"});
    // The hot key, which grabs the keyboard: the application sees only the first of its keys.
    xcb_grab_key(user.connection(), 0, user.root(), XCB_MOD_MASK_1, user.keyCode("d"),
                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    user.pressKey("Alt_L");
    user.pressKey("d");
    EXPECT_EQ(copyFrom(target), "ephemeral");
    xcb_ungrab_key(user.connection(), user.keyCode("d"), user.root(), XCB_MOD_MASK_1);
    user.releaseKey("d");
    user.releaseKey("Alt_L");
    const Words keys = target.keys();
    EXPECT_THAT(keys, Contains("press c 4"));
    EXPECT_THAT(keys, Not(Contains("press d 0")));
    EXPECT_THAT(keys, Not(Contains("press d 4")));
    const auto release = std::ranges::find_if(
        keys, [](const std::string& line) { return line.starts_with("release Alt_L"); });
    ASSERT_TRUE(release != keys.begin() && release != keys.end());
    EXPECT_THAT(*std::prev(release), Not(HasSubstr("press Alt_L"))) << "would open a menu";
}

TEST_F(PasteboardTest, anApplicationThatIsNotInFrontOrDoesNotRespondGetsNoKeys) {
    const ClipboardOwner owner(test::textOffers("before"));
    const Target behind({"text=ephemeral"});
    {
        const Target front({"text=ephemeral"});
        const Loan loan = lend(behind);
        EXPECT_FALSE(loan->copy());
        EXPECT_THAT(front.keys(), IsEmpty());
    }
    EXPECT_THAT(behind.output(), Not(HasSubstr("press c")));
    {
        const Target silent({"text=ephemeral", "ping=ignored"});
        const Loan loan = lend(silent);
        const auto begin = Clock::now();
        EXPECT_FALSE(loan->copy());
        EXPECT_LT(Clock::now() - begin, 500ms + grace);
        EXPECT_THAT(silent.keys(), IsEmpty());
    }
    const Target stopped({"text=ephemeral", "ping=answered"});
    stopped.signal(SIGSTOP);
    EXPECT_FALSE(lend(stopped)->copy());
    stopped.signal(SIGCONT);
    EXPECT_THAT(stopped.keys(), IsEmpty());
    EXPECT_EQ(copyFrom(stopped), "ephemeral") << "now that it responds";
    EXPECT_TRUE(comes("before"));
}

TEST_F(PasteboardTest, whoAsksWhileItIsLentWaitsForASecond) {
    const ClipboardOwner owner(test::textOffers("before"));
    const Target target({"text=ephemeral"});
    Loan first = lend(target);
    EXPECT_EQ(pasteboard->lend(target.application), nullptr);
    auto second =
        std::async(std::launch::async, [&] { return pasteboard->lend(target.application); });
    EXPECT_TRUE(first->copy());
    EXPECT_TRUE(first->awaitChange(patience));
    first.reset();
    first = second.get();
    if (first == nullptr) first = lend(target);
    EXPECT_TRUE(first->copy());
    EXPECT_TRUE(first->awaitChange(patience));
    EXPECT_EQ(first->string(), "ephemeral");
    first.reset();
    EXPECT_TRUE(comes("before"));
}

TEST_F(PasteboardTest, theLastSelectionIsThatOfTheApplicationAlone) {
    const Target target({"primary=短暂 ephemeral"});
    EXPECT_EQ(pasteboard->selectedString(target.application), "短暂 ephemeral");
    const Target another;
    EXPECT_EQ(pasteboard->selectedString(another.application), std::nullopt);
    const ClipboardOwner owner(test::textOffers("elsewhere"), {}, "PRIMARY");
    EXPECT_EQ(pasteboard->selectedString(target.application), std::nullopt);
}

TEST_F(PasteboardTest, whatLayThereOutlivesTavik) {
    const Target target({"text=ephemeral"});
    {
        const ClipboardOwner owner(test::textOffers("before"));
        EXPECT_EQ(copyFrom(target), "ephemeral");
        EXPECT_TRUE(comes("before"));
    }
    pasteboard.reset();
    EXPECT_TRUE(comesAndStays("before"));
}

/// A program that remembers what lay on the clipboard, and the file in which it does.
struct ClipboardManager {
    std::string program;
    std::string history;
    bool isLatestFirst;
};

class ClipboardManagerTests : public PasteboardTest,
                              public testing::WithParamInterface<ClipboardManager> {};

TEST_P(ClipboardManagerTests, rememberWhatLayThereAsTheLast) {
    const auto& [program, history, isLatestFirst] = GetParam();
    if (!test::areInstalled({program})) GTEST_SKIP() << "this takes " << program;
    const test::TemporaryDirectory folder;
    std::optional<test::BackgroundProgram> manager(
        std::in_place, Words{"/usr/bin/env", "XDG_CACHE_HOME=" + folder.path().string(),
                             "XDG_DATA_HOME=" + folder.path().string(), program});
    const Target target({"text=ephemeral"});
    // Some take no notice of what lay there before they came.
    std::vector<std::unique_ptr<ClipboardOwner>> owners;
    ASSERT_TRUE(eventually([&] {
        owners.push_back(std::make_unique<ClipboardOwner>(test::textOffers("before")));
        return eventually([&] { return owners.back()->requests("UTF8_STRING") > 0; }, 300ms);
    }));
    EXPECT_EQ(copyFrom(target), "ephemeral");
    EXPECT_TRUE(comes("before"));
    owners.clear();
    EXPECT_TRUE(comesAndStays("before"));
    pasteboard.reset();
    EXPECT_TRUE(comesAndStays("before"));
    manager.reset();
    const std::string remembered = test::readFile(folder.file(history));
    const auto copied = remembered.find("ephemeral");
    const auto before = remembered.find("before");
    EXPECT_NE(before, std::string::npos);
    EXPECT_TRUE(copied == std::string::npos || (before < copied) == isLatestFirst) << remembered;
}

INSTANTIATE_TEST_SUITE_P(
    Known, ClipboardManagerTests,
    testing::Values(ClipboardManager{"xfce4-clipman", "xfce4/clipman/textsrc", false},
                    ClipboardManager{"parcellite", "parcellite/history", true}),
    [](const auto& each) { return each.index == 0 ? "Clipman" : "Parcellite"; });

/// A terminal in which `sleep` runs, and captures from it.
class TerminalCaptureTests : public PasteboardTest {
protected:
    void captureFrom(Words command, const std::string& script) {
        test::writeFile(folder.file("script"), script);
        command.insert(command.end(), {"-e", "sh " + folder.file("script")});
        if (!test::areInstalled({command.front()})) GTEST_SKIP() << "this takes " << command[0];
        test::BackgroundProgram terminal(command);
        const FrontApplication front = awaitFront(terminal.id());
        test::awaitText("begun", folder.file("log"));
        const ClipboardOwner owner(test::textOffers("before"));
        AtSpiAccessibility accessibility;
        X11Workspace workspace(noName);
        ProcProcesses processes;
        const SelectionCapture selection({accessibility, workspace, *pasteboard, processes,
                                          [] { return true; }, [](const std::string&) {}});
        EXPECT_THROW(static_cast<void>(selection.capture()), CaptureError);
        EXPECT_TRUE(stays([&] { return log() == "begun\n"; }));
        EXPECT_EQ(owner.losses(), 0);
        pressCopy();
        EXPECT_TRUE(eventually([&] { return log() == "begun\nended\n"; })) << "Ctrl+C would";
    }

    std::string log() const { return test::readFile(folder.file("log")); }

    std::string sleeping() const {
        return "trap 'echo ended >> " + folder.file("log") + "' INT\necho begun >> "
               + folder.file("log") + "\nsleep 1000\n";
    }

    test::TemporaryDirectory folder;
};

TEST_F(TerminalCaptureTests, aProgramInXTermIsNotInterrupted) {
    captureFrom({"xterm"}, sleeping());
}

TEST_F(TerminalCaptureTests, aProgramInATerminalThatNobodyKnowsIsNotInterrupted) {
    captureFrom({"xterm", "-class", "Unheard-of"}, sleeping());
}

TEST_F(TerminalCaptureTests, aProgramInXfceTerminalIsNotInterrupted) {
    captureFrom({"xfce4-terminal", "--disable-server"}, sleeping());
}

} // namespace
} // namespace tavik
