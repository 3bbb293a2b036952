#include "Platform/Linux/Secrets/SecretServiceKeychain.h"
#include "Platform/Qt/QtMainQueue.h"
#include "Platform/Support/Daemon.h"
#include "Platform/Support/LoopWatch.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

namespace tavik {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using test::atOnce;
using test::BackgroundProgram;
using test::Daemon;
using test::LoopWatch;
using testing::HasSubstr;
using testing::Not;

constexpr auto account = "llm-api-key";

const std::vector<std::string> hungService{"name-hung", "org.freedesktop.secrets"};

class KeychainTests : public testing::Test {
protected:
    void SetUp() override {
        const bool canRun = watch.aside([] {
            return test::areInstalled({"gnome-keyring-daemon", "secret-tool"});
        });
        if (!canRun) GTEST_SKIP() << "this takes gnome-keyring and libsecret-tools";
    }

    void TearDown() override { EXPECT_LT(watch.longestGap(), atOnce); }

    Keychain::Answer get(Keychain& keychain, const std::string& from = account) {
        std::optional<Keychain::Answer> answer;
        keychain.get(from, [&](Keychain::Answer given) { answer = std::move(given); });
        EXPECT_TRUE(watch.runUntil([&] { return answer.has_value(); })) << "no answer";
        return answer.value_or(Keychain::Answer{});
    }

    bool set(Keychain& keychain, const std::string& secret, const std::string& to = account) {
        std::optional<bool> isKept;
        keychain.set(secret, to, [&](bool given) { isKept = given; });
        EXPECT_TRUE(watch.runUntil([&] { return isKept.has_value(); })) << "no answer";
        return isKept.value_or(false);
    }

    std::unique_ptr<Daemon> start(const std::vector<std::string>& words) {
        return watch.aside([&] { return std::make_unique<Daemon>(words); });
    }

    void end(std::unique_ptr<Daemon>& daemon) {
        watch.aside([&] { daemon.reset(); });
    }

    /// What another program finds, with its exit code when that is not 0.
    std::string seenByOthers(const std::string& of = account) {
        const auto found = secretTool({"lookup", "service", "com.tavik.app", "account", of});
        return found.exitCode == 0 ? found.output : "exit " + std::to_string(found.exitCode);
    }

    test::ProcessResult secretTool(const std::vector<std::string>& words) {
        std::vector<std::string> command{"/usr/bin/secret-tool"};
        command.insert(command.end(), words.begin(), words.end());
        return watch.aside([&] { return test::runProcess(command); });
    }

    /// In a process of its own, for the connection to the bus is one for the whole process.
    test::ProcessResult runAlone(const std::string& name,
                                 const std::vector<std::string>& environment) {
        std::vector<std::string> command{"/usr/bin/env"};
        command.insert(command.end(), environment.begin(), environment.end());
        command.insert(command.end(),
                       {"/proc/" + std::to_string(getpid()) + "/exe",
                        "--gtest_also_run_disabled_tests", "--gtest_filter=*." + name});
        return watch.aside([&] { return test::runProcess(command); });
    }

    LoopWatch watch;
    QtMainQueue queue;
};

/// The time that a piece of work takes on this thread.
template<typename Work>
milliseconds timeOf(Work work) {
    const auto start = steady_clock::now();
    work();
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
}

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

/// The files below a directory that hold these bytes.
std::vector<std::string> filesWith(const std::string& bytes, const std::string& directory) {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory))
        if (entry.is_regular_file()
            && test::readFile(entry.path()).find(bytes) != std::string::npos)
            found.push_back(entry.path());
    return found;
}

TEST_F(KeychainTests, secretsAreKeptReplacedAndRemovedAsOtherProgramsSeeThem) {
    const auto daemon = start({"secrets"});
    SecretServiceKeychain keychain(queue);
    EXPECT_TRUE(set(keychain, "")) << "other tests use the same keyring";
    EXPECT_EQ(get(keychain).secret, std::nullopt);
    EXPECT_EQ(get(keychain).state, KeychainState::open);
    const std::vector<std::string> secrets{"sk-first", "键 \"quoted\"\n%s $HOME",
                                           std::string(5000, 'k')};
    for (const std::string& secret : secrets) {
        EXPECT_TRUE(set(keychain, secret));
        EXPECT_EQ(get(keychain).secret, secret);
        EXPECT_EQ(seenByOthers(), secret);
    }
    EXPECT_TRUE(set(keychain, "another", "other-account"));
    EXPECT_TRUE(set(keychain, ""));
    EXPECT_EQ(get(keychain).secret, std::nullopt);
    EXPECT_EQ(seenByOthers(), "exit 1");
    EXPECT_TRUE(set(keychain, "")) << "there is nothing left to remove";
    EXPECT_EQ(seenByOthers("other-account"), "another");
}

TEST_F(KeychainTests, bytesThatAreNoTextReadAsNothing) {
    const auto daemon = start({"secrets"});
    SecretServiceKeychain keychain(queue);
    ASSERT_TRUE(set(keychain, "text \xff\xfe"));
    const Keychain::Answer answer = get(keychain);
    EXPECT_EQ(answer.secret, std::nullopt);
    EXPECT_EQ(answer.state, KeychainState::open);
}

TEST_F(KeychainTests, theSecretIsInNoFile) {
    const std::string secret = "sk-0123456789-never-in-a-file";
    const auto daemon = start({"secrets"});
    SecretServiceKeychain keychain(queue);
    ASSERT_TRUE(set(keychain, secret));
    ASSERT_EQ(get(keychain).secret, secret);
    const std::string session = environment("TAVIK_SESSION");
    watch.aside([&] {
        EXPECT_THAT(filesWith(secret, session), testing::IsEmpty());
        EXPECT_THAT(filesWith("GnomeKeyring", session + "/home"), testing::SizeIs(testing::Ge(1)));
    });
}

TEST_F(KeychainTests, jobsAreDoneInTheOrderOfTheCalls) {
    const auto daemon = start({"secrets"});
    SecretServiceKeychain keychain(queue);
    std::vector<std::string> seen;
    const auto read = [&] {
        keychain.get(account, [&](const Keychain::Answer& answer) {
            seen.push_back(answer.secret.value_or("nothing"));
        });
    };
    for (const std::string secret : {"one", "two", "", "three"}) {
        keychain.set(secret, account, [&, secret](bool isKept) {
            seen.push_back((isKept ? "kept " : "lost ") + secret);
        });
        read();
    }
    EXPECT_THAT(seen, testing::IsEmpty()) << "a callback within the call";
    EXPECT_TRUE(watch.runUntil([&] { return seen.size() == 8; }));
    EXPECT_THAT(seen, testing::ElementsAre("kept one", "one", "kept two", "two", "kept ", "nothing",
                                           "kept three", "three"));
}

TEST_F(KeychainTests, aLockedKeyringIsReportedAndAWriteThatNobodyCanBeAskedForFails) {
    auto daemon = start({"secrets"});
    SecretServiceKeychain keychain(queue, {1500ms, 500ms});
    ASSERT_TRUE(set(keychain, "sk-locked"));
    end(daemon);
    daemon = start({"secrets-locked"});
    for (const auto* of : {account, "no-such-account"}) {
        const Keychain::Answer answer = get(keychain, of);
        EXPECT_EQ(answer.state, KeychainState::locked);
        EXPECT_EQ(answer.secret, std::nullopt);
    }
    EXPECT_FALSE(set(keychain, "sk-new"));
}

TEST_F(KeychainTests, aKeyringThatNobodyCanBeAskedToMakeIsOpenToReadingAndFailsWriting) {
    const auto daemon = start({"secrets-empty"});
    SecretServiceKeychain keychain(queue, {1500ms, 500ms});
    EXPECT_EQ(get(keychain).state, KeychainState::open);
    EXPECT_FALSE(set(keychain, "sk-new"));
}

TEST_F(KeychainTests, onlyWritingAsksTheUserAndWithdrawsTheQuestionAtItsLimit) {
    for (const std::string name : {"secrets-prompting", "secrets-prompting-silent"}) {
        SCOPED_TRACE(name);
        const auto daemon = start({name});
        const std::string log = environment("TAVIK_SESSION") + "/log/" + name + ".log";
        SecretServiceKeychain keychain(queue, {1500ms, 500ms});
        EXPECT_EQ(get(keychain).state, KeychainState::open);
        EXPECT_THAT(test::readFile(log), Not(HasSubstr("Prompt")));
        const milliseconds time = timeOf([&] { EXPECT_FALSE(set(keychain, "sk-unanswered")); });
        EXPECT_GE(time, 490ms);
        EXPECT_LT(time, 900ms);
        EXPECT_THAT(test::readFile(log), HasSubstr("Prompt\nDismiss\n"));
        EXPECT_EQ(get(keychain).state, KeychainState::open);
        keychain.set("sk-unanswered", account, [](bool) { ADD_FAILURE() << "called too late"; });
        const milliseconds end =
            watch.aside([&] { return timeOf([&] { keychain.finish(200ms); }); });
        EXPECT_GE(end, 190ms);
        EXPECT_LT(end, 600ms);
        watch.runFor(50ms);
    }
}

TEST_F(KeychainTests, aServiceIsFoundWheneverItIsThere) {
    SecretServiceKeychain keychain(queue);
    EXPECT_EQ(get(keychain).state, KeychainState::unavailable);
    EXPECT_FALSE(set(keychain, "sk-lost"));
    auto daemon = start({"secrets"});
    EXPECT_TRUE(set(keychain, "sk-late"));
    end(daemon);
    EXPECT_EQ(get(keychain).state, KeychainState::unavailable);
    daemon = start({"secrets"});
    EXPECT_EQ(get(keychain).secret, "sk-late");
}

TEST_F(KeychainTests, aHungServiceCostsTheLimitsAndDestructionNothing) {
    const auto daemon = start(hungService);
    auto keychain =
        std::make_unique<SecretServiceKeychain>(queue, SecretServiceLimits{300ms, 400ms});
    EXPECT_LT(timeOf([&] { EXPECT_EQ(get(*keychain).state, KeychainState::unavailable); }), 600ms);
    EXPECT_LT(timeOf([&] { EXPECT_FALSE(set(*keychain, "sk-hung")); }), 700ms);
    bool isCalled = false;
    keychain->get(account, [&](const Keychain::Answer&) { isCalled = true; });
    keychain->set("sk-hung", account, [&](bool) { isCalled = true; });
    watch.runFor(50ms);
    EXPECT_LT(LoopWatch::ownTimeOf([&] { keychain.reset(); }), atOnce);
    watch.runFor(100ms);
    EXPECT_FALSE(isCalled);
}

TEST_F(KeychainTests, aServiceThatHangsInTheMiddleIsGivenUp) {
    const auto daemon = start({"secrets"});
    SecretServiceKeychain keychain(queue, {300ms, 300ms});
    ASSERT_TRUE(set(keychain, "sk-before"));
    daemon->signal(SIGSTOP);
    EXPECT_EQ(get(keychain).state, KeychainState::unavailable);
    EXPECT_FALSE(set(keychain, "sk-after"));
    daemon->signal(SIGCONT);
    EXPECT_TRUE(set(keychain, "sk-after"));
    EXPECT_EQ(get(keychain).secret, "sk-after");
}

TEST_F(KeychainTests, finishingWaitsForWritesOnlyAndAtMostForItsLimit) {
    bool isCalled = false;
    const auto call = [&](auto) { isCalled = true; };
    auto daemon = start({"secrets"});
    {
        SecretServiceKeychain keychain(queue);
        keychain.get(account, call);
        keychain.set("sk-last", account, call);
        watch.aside([&] { keychain.finish(5000ms); });
        keychain.set("sk-too-late", account, call);
    }
    EXPECT_EQ(seenByOthers(), "sk-last");
    end(daemon);
    daemon = start(hungService);
    SecretServiceKeychain keychain(queue);
    keychain.get(account, call);
    EXPECT_LT(LoopWatch::ownTimeOf([&] { keychain.finish(1000ms); }), atOnce)
        << "only a read is under way";
    SecretServiceKeychain writing(queue);
    writing.set("sk-hung", account, call);
    const milliseconds time = watch.aside([&] { return timeOf([&] { writing.finish(200ms); }); });
    EXPECT_GE(time, 190ms);
    EXPECT_LT(time, 300ms);
    watch.runFor(50ms);
    EXPECT_FALSE(isCalled);
}

TEST_F(KeychainTests, DISABLED_aloneWithoutABus) {
    SecretServiceKeychain keychain(queue);
    EXPECT_EQ(get(keychain).state, KeychainState::unavailable);
    EXPECT_FALSE(set(keychain, "sk-lost"));
}

TEST_F(KeychainTests, withoutABusThereAreNoSecretsAndNoBusIsStarted) {
    const test::TemporaryDirectory directory;
    const std::string launcher = directory.file("dbus-launch");
    test::writeFile(launcher, "#!/bin/sh\ntouch '" + directory.file("launched") + "'\n");
    std::filesystem::permissions(launcher, std::filesystem::perms::owner_all);
    const std::string path = "PATH=" + directory.path().string() + ":" + environment("PATH");
    for (const std::string address :
         {"-uDBUS_SESSION_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS=",
          "DBUS_SESSION_BUS_ADDRESS=autolaunch:", "DBUS_SESSION_BUS_ADDRESS=nonsense",
          "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere"}) {
        const auto result =
            runAlone("DISABLED_aloneWithoutABus",
                     {address, "XDG_RUNTIME_DIR=" + directory.file("run"), "DISPLAY=:0", path});
        EXPECT_EQ(result.exitCode, 0) << address << result.output << result.errors;
        EXPECT_FALSE(std::filesystem::exists(directory.file("launched"))) << address;
    }
}

TEST_F(KeychainTests, DISABLED_aloneOnABusThatEnds) {
    const std::string address = environment("DBUS_SESSION_BUS_ADDRESS");
    auto bus = std::make_unique<BackgroundProgram>(std::vector<std::string>{
        "dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address});
    const auto daemon = start(hungService);
    SecretServiceKeychain keychain(queue);
    std::optional<KeychainState> state;
    keychain.get(account, [&](const Keychain::Answer& answer) { state = answer.state; });
    watch.runFor(300ms);
    EXPECT_FALSE(state);
    watch.aside([&] { bus.reset(); });
    EXPECT_TRUE(watch.runUntil([&] { return state.has_value(); }, 500ms));
    EXPECT_EQ(state, KeychainState::unavailable);
}

TEST_F(KeychainTests, theProgramOutlivesItsBus) {
    const test::TemporaryDirectory directory;
    const auto result = runAlone("DISABLED_aloneOnABusThatEnds",
                                 {"DBUS_SESSION_BUS_ADDRESS=unix:path=" + directory.file("bus")});
    EXPECT_EQ(result.exitCode, 0) << result.output << result.errors;
}

} // namespace
} // namespace tavik
