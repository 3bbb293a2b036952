#include "Platform/Linux/Speech/SpeechDispatcher.h"
#include "Platform/Linux/Speech/SpeechRate.h"
#include "Platform/Qt/QtMainQueue.h"
#include "Platform/Support/Daemon.h"
#include "Platform/Support/LoopWatch.h"
#include "Platform/Support/Recorder.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <algorithm>
#include <filesystem>
#include <limits>

namespace tavik {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using test::atOnce;
using test::Daemon;
using test::LoopWatch;
using test::Recorder;

constexpr auto language = "en-US";

/// About six seconds at the usual speed.
const std::string sentence = "It was the best of times, it was the worst of times, it was the age "
                             "of wisdom, and the season of light.";

TEST(SpeechRateTests, factorsMultiplyTheUsualRateAndStayWithinBounds) {
    EXPECT_EQ(speechRate(0.9, 0), -20);
    EXPECT_EQ(speechRate(1.5, 0), 35);
    for (const int usual : {-100, -35, 0, 20, 100})
        EXPECT_EQ(speechRate(1, usual), usual);
    EXPECT_EQ(speechRate(0.9, 7), -2) << "1.1 times 0.9 is a little less than 1";
    EXPECT_EQ(speechRate(1e300, 0), 100);
    EXPECT_EQ(speechRate(-5, 0), -100);
    EXPECT_EQ(speechRate(std::numeric_limits<double>::quiet_NaN(), 15), 15);
}

class SpeechTests : public testing::Test {
protected:
    void SetUp() override {
        const bool canRun = watch.aside([] {
            return test::areInstalled({"speech-dispatcher", "espeak-ng", "pulseaudio", "parec"});
        });
        if (!canRun) GTEST_SKIP() << "this takes speech-dispatcher, espeak-ng and pulseaudio";
    }

    void TearDown() override { EXPECT_LT(watch.longestGap(), atOnce); }

    std::unique_ptr<Daemon> start(const std::string& name) {
        return watch.aside(
            [&] { return std::make_unique<Daemon>(std::vector<std::string>{name}); });
    }

    void end(std::unique_ptr<Daemon>& daemon) {
        watch.aside([&] { daemon.reset(); });
    }

    std::unique_ptr<Recorder> record() {
        return watch.aside([] { return std::make_unique<Recorder>(); });
    }

    bool hear(const std::function<bool()>& isHeard, milliseconds limit) {
        for (milliseconds time = 0ms; time < limit; time += 20ms) {
            watch.runFor(20ms);
            if (watch.aside(isHeard)) return true;
        }
        return false;
    }

    bool waitForSound(const Recorder& recorder) {
        return hear([&] { return recorder.soundLength() > 0ms; }, 5s);
    }

    /// Whether there was sound, and then none for longer than a pause within a sentence.
    bool waitForSilence(const Recorder& recorder) {
        return hear([&] { return recorder.soundLength() > 0ms && recorder.silenceAtEnd() > 700ms; },
                    15s);
    }

    LoopWatch watch;
    QtMainQueue queue;
};

/// With a service that can be heard.
class AudibleSpeechTests : public SpeechTests {
protected:
    void SetUp() override {
        SpeechTests::SetUp();
        if (IsSkipped()) return;
        audio = start("audio");
        service = start("speech");
    }

    milliseconds lengthOf(const std::string& text, double rate) {
        SpeechDispatcher speech(queue);
        const auto recorder = record();
        speech.speak(text, language, rate);
        EXPECT_TRUE(waitForSilence(*recorder));
        return recorder->soundLength();
    }

    std::unique_ptr<Daemon> audio;
    std::unique_ptr<Daemon> service;
};

TEST_F(AudibleSpeechTests, aSlowerRateTakesAccordinglyLonger) {
    const auto usual = static_cast<double>(lengthOf(sentence, 1).count());
    const auto slow = static_cast<double>(lengthOf(sentence, 0.9).count());
    RecordProperty("usual", std::to_string(usual));
    RecordProperty("slow", std::to_string(slow));
    EXPECT_NEAR(slow / usual, 1 / 0.9, 0.03);
}

TEST_F(AudibleSpeechTests, stoppingSilencesAtOnce) {
    SpeechDispatcher speech(queue);
    const auto recorder = record();
    speech.speak(sentence, language, 1);
    ASSERT_TRUE(waitForSound(*recorder));
    watch.runFor(500ms);
    const milliseconds before = recorder->length();
    speech.stop();
    watch.runFor(1500ms);
    const milliseconds after = recorder->length() - recorder->silenceAtEnd() - before;
    RecordProperty("sound after stop, ms", std::to_string(after.count()));
    EXPECT_LT(after, 250ms);
    EXPECT_TRUE(speech.isAvailable());
}

TEST_F(AudibleSpeechTests, aNewTextReplacesTheOldAndOnlyTheNewestIsSaid) {
    const milliseconds oneWord = lengthOf("reminder", 1);
    SpeechDispatcher speech(queue);
    const auto recorder = record();
    for (int count = 0; count < 20; ++count)
        speech.speak(sentence, language, 1);
    speech.speak("reminder", language, 1);
    EXPECT_TRUE(waitForSilence(*recorder));
    EXPECT_LT(recorder->soundLength(), oneWord + 400ms);
}

TEST_F(AudibleSpeechTests, goingSilencesToo) {
    auto speech = std::make_unique<SpeechDispatcher>(queue);
    const auto recorder = record();
    speech->speak(sentence, language, 1);
    ASSERT_TRUE(waitForSound(*recorder));
    speech.reset();
    EXPECT_TRUE(waitForSilence(*recorder));
    EXPECT_LT(recorder->soundLength(), 1000ms);
}

TEST_F(AudibleSpeechTests, textsAreNeverCommands) {
    SpeechDispatcher speech(queue);
    for (const std::string& text :
         {std::string("one\r\n.\r\nQUIT\r\n"), std::string("two\n.\nSTOP ALL"), std::string("."),
          std::string(".\r\n.\r\n"), std::string("<speak>three</speak>"), std::string(" \t\r\n"),
          std::string(), std::string("nul\0QUIT", 8), std::string("\xff\xfe\xc3"),
          std::string(1'000'000, '.')}) {
        speech.speak(text, language, 1);
        watch.runFor(60ms);
    }
    speech.speak("no language", "en\r\nQUIT", 1);
    watch.runFor(60ms);
    const auto recorder = record();
    speech.speak("reminder", language, 1);
    EXPECT_TRUE(waitForSound(*recorder)) << "the connection must have stayed in step";
    EXPECT_TRUE(speech.isAvailable());
}

TEST_F(AudibleSpeechTests, aServiceThatWasRestartedIsFoundByTheNextText) {
    SpeechDispatcher speech(queue);
    {
        const auto recorder = record();
        speech.speak("reminder", language, 1);
        ASSERT_TRUE(waitForSound(*recorder));
    }
    end(service);
    speech.stop();
    speech.speak("reminder", language, 1);
    EXPECT_TRUE(watch.runUntil([&] { return !speech.isAvailable(); }, 5s));
    service = start("speech");
    const auto recorder = record();
    speech.speak("reminder", language, 1);
    EXPECT_TRUE(waitForSound(*recorder));
    EXPECT_TRUE(watch.runUntil([&] { return speech.isAvailable(); }, 5s));
}

TEST_F(SpeechTests, withoutAServiceNothingIsSaid) {
    SpeechDispatcher speech(queue);
    EXPECT_TRUE(speech.isAvailable()) << "not tried yet";
    speech.stop();
    watch.runFor(50ms);
    EXPECT_TRUE(speech.isAvailable());
    speech.speak("reminder", language, 1);
    EXPECT_TRUE(watch.runUntil([&] { return !speech.isAvailable(); }, 5s));
    speech.stop();
}

TEST_F(SpeechTests, aServiceThatIsStartedCanBeEndedByABrokenPipe) {
    const test::TemporaryDirectory folder;
    const std::string command = folder.file("command");
    test::writeFile(command, "#!/bin/sh\ncd '" + folder.path().string()
                                 + "'\n>started\nkill -PIPE $$\n>survived\n");
    std::filesystem::permissions(command, std::filesystem::perms::owner_all);
    qputenv("SPEECHD_CMD", command.c_str());
    SpeechDispatcher speech(queue);
    speech.speak("reminder", language, 1);
    EXPECT_TRUE(watch.runUntil([&] { return !speech.isAvailable(); }, 5s));
    qunsetenv("SPEECHD_CMD");
    EXPECT_TRUE(std::filesystem::exists(folder.file("started")));
    EXPECT_FALSE(std::filesystem::exists(folder.file("survived")));
}

std::ptrdiff_t speechThreads() {
    const std::filesystem::directory_iterator threads("/proc/self/task");
    return std::count_if(begin(threads), end(threads), [](const auto& thread) {
        return test::readFile(thread.path() / "comm") == "tavik-speech\n";
    });
}

TEST_F(SpeechTests, aHungServiceHoldsNothingUpAndOnlySoManyThreads) {
    const auto audio = start("audio");
    auto service = start("speech-hung");
    SpeechDispatcher speech(queue, 100ms);
    for (int count = 0; count < 6; ++count) {
        speech.speak(sentence, language, 1);
        watch.runFor(150ms);
        speech.stop();
        EXPECT_FALSE(speech.isAvailable());
    }
    EXPECT_EQ(speechThreads(), 3);
    end(service);
    EXPECT_TRUE(watch.runUntil([&] { return speechThreads() == 0; }, 1s));
    service = start("speech");
    const auto recorder = record();
    speech.speak("reminder", language, 1);
    EXPECT_TRUE(waitForSound(*recorder));
    EXPECT_TRUE(watch.runUntil([&] { return speech.isAvailable(); }, 1s));
    EXPECT_TRUE(waitForSilence(*recorder));
    EXPECT_LT(recorder->soundLength(), 1500ms) << "what was given up is not said any more";
}

TEST_F(SpeechTests, goingDoesNotWaitForAHungService) {
    const auto service = start("speech-hung");
    auto speech = std::make_unique<SpeechDispatcher>(queue);
    speech->speak(sentence, language, 1);
    watch.runFor(50ms);
    speech.reset();
    watch.runFor(10ms);
}

} // namespace
} // namespace tavik
