#include "Platform/Linux/Process/ProcProcesses.h"
#include "Platform/Support/Daemon.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <thread>

namespace tavik {
namespace {

using namespace std::chrono_literals;
using test::BackgroundProgram;

using testing::IsEmpty;

constexpr std::int64_t nobody = 2'000'000'000;

class ProcessTests : public testing::Test {
protected:
    /// Starts Python, and returns when the program has printed "ready".
    BackgroundProgram& python(const std::string& program) {
        const std::string output = folder.file("output");
        started.emplace(std::vector<std::string>{"/usr/bin/python3", "-uc", program}, output);
        test::awaitText("ready", output);
        return *started;
    }

    static bool soon(const std::function<bool()>& isSo) {
        for (int attempt = 0; attempt < 250 && !isSo(); ++attempt)
            std::this_thread::sleep_for(20ms);
        return isSo();
    }

    test::TemporaryDirectory folder;
    std::optional<BackgroundProgram> started;
    ProcProcesses processes;
};

TEST_F(ProcessTests, aTerminalIsFoundInAProcessAndInItsDescendantsOnly) {
    constexpr auto plain = "import time; print('ready'); time.sleep(60)";
    EXPECT_FALSE(processes.mayHoldTerminal(python(plain).id()));
    constexpr auto inside = "import pty, time; ends = pty.openpty(); "
                            "print('ready'); time.sleep(60)";
    EXPECT_TRUE(processes.mayHoldTerminal(python(inside).id()));
    constexpr auto other = "import os; ours, theirs = os.openpty(); os.close(ours); "
                           "print('ready'); import time; time.sleep(60)";
    EXPECT_FALSE(processes.mayHoldTerminal(python(other).id())) << "it runs in one";
    constexpr auto below = "import os, pty, time\n"
                           "if os.fork() == 0:\n"
                           "    if os.fork() == 0: ends = pty.openpty(); print('ready')\n"
                           "time.sleep(60)\n";
    EXPECT_TRUE(processes.mayHoldTerminal(python(below).id()));
}

TEST_F(ProcessTests, aTerminalThatCannotBeSeenMayBeThere) {
    for (const std::int64_t process : {std::int64_t{0}, std::int64_t{-1}, nobody, INT64_MAX})
        EXPECT_TRUE(processes.mayHoldTerminal(process));
    const std::int64_t ours = getpid();
    EXPECT_EQ(test::inChild({.unprivileged = true},
                            [&] {
                                return processes.mayHoldTerminal(ours) ? std::string("maybe")
                                                                       : std::string("no");
                            }),
              getuid() == 0 ? "maybe" : "no");
    constexpr auto ended = "import os, time\n"
                           "if os.fork() == 0: os._exit(0)\n"
                           "time.sleep(0.1); print('ready'); time.sleep(60)\n";
    EXPECT_FALSE(processes.mayHoldTerminal(python(ended).id())) << "a child has ended";
}

TEST_F(ProcessTests, aStoppedProcessIsToldWhateverItIsCalled) {
    const std::string strange = folder.file("x) T 1 (y");
    std::filesystem::copy_file("/usr/bin/sleep", strange);
    const BackgroundProgram sleeper({strange, "60"});
    EXPECT_TRUE(soon([&] { return processes.arguments(sleeper.id()).size() == 2; }));
    EXPECT_FALSE(processes.isStopped(sleeper.id()));
    sleeper.signal(SIGSTOP);
    EXPECT_TRUE(soon([&] { return processes.isStopped(sleeper.id()); }));
    sleeper.signal(SIGCONT);
    EXPECT_TRUE(soon([&] { return !processes.isStopped(sleeper.id()); }));
    EXPECT_FALSE(processes.isStopped(nobody));
}

TEST_F(ProcessTests, argumentsAndStartAreThoseOfTheProcess) {
    const Date before = currentDate();
    const BackgroundProgram sleeper(
        {"/usr/bin/python3", "-c", "import time; time.sleep(60)", "", std::string(100'000, 'a')});
    EXPECT_TRUE(soon([&] { return processes.arguments(sleeper.id()).size() == 5; }));
    const auto arguments = processes.arguments(sleeper.id());
    EXPECT_EQ(arguments.at(3), "");
    EXPECT_EQ(arguments.at(0), "/usr/bin/python3");
    EXPECT_LT(arguments.at(4).size(), 66'000U) << "the rest is left out";
    const Date start = processes.startTime(sleeper.id()).value_or(Date());
    EXPECT_GT(start, before - 1s);
    EXPECT_LT(start, currentDate() + 1s);
    EXPECT_THAT(processes.arguments(nobody), IsEmpty());
    EXPECT_FALSE(processes.startTime(nobody));
}

} // namespace
} // namespace tavik
