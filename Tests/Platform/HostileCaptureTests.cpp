#include "Capture/CaptureError.h"
#include "Capture/SelectionCapture.h"
#include "Platform/Linux/AtSpi/AtSpiAccessibility.h"
#include "Platform/Linux/Process/ProcProcesses.h"
#include "Platform/Linux/X11/X11Pasteboard.h"
#include "Platform/Support/Daemon.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <future>
#include <thread>

namespace tavik {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;

using Clock = std::chrono::steady_clock;

/// A capture has a second and a half; the rest is for a machine that is busy.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr auto latest = 2500ms;
#else
constexpr auto latest = 1900ms;
#endif

constexpr auto launcher = "/usr/libexec/at-spi-bus-launcher";

/// Tools/Desktop/hostile_application.py, which says there how it can behave.
class HostileApplication {
public:
    explicit HostileApplication(const std::vector<std::string>& behaviour)
        : program(commandOf(behaviour), folder.file("output")) {
        test::awaitText("ready", folder.file("output"));
    }

    pid_t id() const { return program.id(); }

    void signal(int number) const { program.signal(number); }

    std::string output() const { return test::readFile(folder.file("output")); }

private:
    static std::vector<std::string> commandOf(const std::vector<std::string>& behaviour) {
        std::vector<std::string> command{"/usr/bin/python3",
                                         TAVIK_DESKTOP_TOOLS "/hostile_application.py"};
        command.insert(command.end(), behaviour.begin(), behaviour.end());
        return command;
    }

    test::TemporaryDirectory folder;
    test::BackgroundProgram program;
};

/// A desktop with one window in front.
class OneWindow final : public Workspace {
public:
    explicit OneWindow(std::int64_t processIdentifier) : processIdentifier(processIdentifier) {}

    std::optional<FrontApplication> frontApplication() override {
        return FrontApplication{.localizedName = "敌意",
                                .bundleIdentifier = "hostile",
                                .processIdentifier = processIdentifier,
                                .windowTitle = "frame",
                                .contents = {100, 100, 600, 400},
                                .frame = {96, 80, 608, 424}};
    }

    std::vector<FrontApplication> applications() override { return {}; }

    std::vector<ScreenRect> screens() override { return {{0, 0, 1280, 800}}; }

private:
    std::int64_t processIdentifier;
};

class HostileCaptureTests : public testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(launcher)) GTEST_SKIP() << "this takes at-spi2-core";
    }

    /// Nothing for a `CaptureError`; anything else that is thrown fails the test.
    std::optional<CaptureResult> capture(const HostileApplication& from) {
        OneWindow workspace(from.id());
        const SelectionCapture selection({accessibility, workspace, pasteboard, processes,
                                          [] { return true; }, [](const std::string&) {}});
        const auto begin = Clock::now();
        std::optional<CaptureResult> result;
        try {
            result = selection.capture();
        } catch (const CaptureError&) {
        }
        EXPECT_LT(Clock::now() - begin, latest);
        return result;
    }

    std::string textOf(const HostileApplication& from) {
        const auto result = capture(from);
        return result ? result->text : "";
    }

    AtSpiAccessibility accessibility;
    X11Pasteboard pasteboard;
    ProcProcesses processes;
};

TEST_F(HostileCaptureTests, aSoundTextAndPageAreCaptured) {
    for (const auto& behaviour : {std::vector<std::string>{"plain"}, {"--web", "plain"}}) {
        const HostileApplication application(behaviour);
        const auto result = capture(application);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->text, "ephemeral");
        EXPECT_EQ(result->sentence, "The quick brown fox has an ephemeral idea.");
        EXPECT_TRUE(result->anchor);
        EXPECT_EQ(result->source.appName, "敌意");
    }
}

TEST_F(HostileCaptureTests, aPasswordIsNotEvenRead) {
    const HostileApplication application({"password"});
    EXPECT_EQ(textOf(application), "");
    EXPECT_THAT(application.output(), Not(HasSubstr("read ")));
}

TEST_F(HostileCaptureTests, anApplicationThatIsStoppedIsReadAgainOnceItGoesOn) {
    const HostileApplication application({"plain"});
    EXPECT_EQ(textOf(application), "ephemeral");
    application.signal(SIGSTOP);
    EXPECT_EQ(textOf(application), "");
    application.signal(SIGCONT);
    EXPECT_EQ(textOf(application), "ephemeral");
}

TEST_F(HostileCaptureTests, anApplicationMayBeKilledWhileItIsRead) {
    const HostileApplication application({"slow"});
    auto text = std::async(std::launch::async, [&] { return textOf(application); });
    std::this_thread::sleep_for(200ms);
    application.signal(SIGKILL);
    EXPECT_EQ(text.get(), "");
}

using Behaviour = std::vector<std::string>;

std::string nameOf(const testing::TestParamInfo<Behaviour>& info) {
    std::string name;
    for (const std::string& word : info.param)
        std::ranges::copy_if(word, std::back_inserter(name),
                             [](unsigned char letter) { return std::isalnum(letter) != 0; });
    return name;
}

class HostileBehaviourTests : public HostileCaptureTests,
                              public testing::WithParamInterface<Behaviour> {};

TEST_P(HostileBehaviourTests, endsInTimeAndLeavesNothingBehind) {
    {
        const HostileApplication hostile(GetParam());
        capture(hostile);
        capture(hostile);
        const HostileApplication sound({"plain"});
        EXPECT_EQ(textOf(sound), "ephemeral") << "beside it";
    }
    const HostileApplication sound({"--web", "plain"});
    EXPECT_EQ(textOf(sound), "ephemeral") << "after it";
}

INSTANTIATE_TEST_SUITE_P(Lies, HostileBehaviourTests,
                         testing::Values(Behaviour{"lying-lengths"},
                                         Behaviour{"--web", "lying-lengths"},
                                         Behaviour{"cyclic-children"}, Behaviour{"many-children"},
                                         Behaviour{"many-children-at-once"},
                                         Behaviour{"--web", "huge-text"}, Behaviour{"links-cycle"},
                                         Behaviour{"null-references"}, Behaviour{"dead-children"}),
                         nameOf);

INSTANTIATE_TEST_SUITE_P(Delays, HostileBehaviourTests,
                         testing::Values(Behaviour{"slow"}, Behaviour{"silent", "0"},
                                         Behaviour{"silent", "7"}, Behaviour{"dying", "0"},
                                         Behaviour{"dying", "7"},
                                         Behaviour{"--web", "dying", "12"}),
                         nameOf);

INSTANTIATE_TEST_SUITE_P(WrongTypes, HostileBehaviourTests,
                         testing::Values(Behaviour{"wrong-types"},
                                         Behaviour{"wrong-types", "CharacterCount"},
                                         Behaviour{"wrong-types", "GetSelection"},
                                         Behaviour{"wrong-types", "GetText"},
                                         Behaviour{"--web", "wrong-types", "GetLink"}),
                         nameOf);

/// Lies about what is not needed for the selection.
class HarmlessLieTests : public HostileBehaviourTests {};

TEST_P(HarmlessLieTests, doesNotCostTheSelection) {
    const HostileApplication hostile(GetParam());
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(textOf(hostile), "ephemeral");
}

INSTANTIATE_TEST_SUITE_P(
    HarmlessLies, HarmlessLieTests,
    testing::Values(Behaviour{"cyclic-parents"}, Behaviour{"--web", "cyclic-parents"},
                    Behaviour{"huge-text"}, Behaviour{"wrong-types", "GetChildren"},
                    Behaviour{"wrong-types", "GetExtents"}, Behaviour{"wrong-types", "GetMatches"},
                    Behaviour{"wrong-types", "GetRangeExtents"},
                    Behaviour{"wrong-types", "GetState"}, Behaviour{"wrong-types", "Parent"},
                    Behaviour{"--web", "wrong-types", "GetAttributeValue"}),
    nameOf);

} // namespace
} // namespace tavik
