#include "App/Support/FakeDesktop.h"
#include "Capture/CaptureError.h"
#include "Storage/SQLiteDB.h"
#include "Support/SampleDictionary.h"
#include "Vocabulary/EmptiedBook.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>

namespace tavik {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class AppEnvironmentTest : public testing::Test, protected test::FakeDesktop {
protected:
    AppEnvironment& make(const std::optional<fs::path>& dictionary = std::nullopt) {
        return environment.emplace(data, settings, dictionary, environmentPorts());
    }

    fs::path data = directory.file("new/data");
    std::optional<AppEnvironment> environment;
};

TEST_F(AppEnvironmentTest, theCountsAreThoseOfTheBookFromTheBeginning) {
    fs::create_directories(data);
    {
        VocabularyStore book((data / AppEnvironment::bookName).string());
        test::addWord(book, "one");
        test::addWord(book, "two", std::nullopt, test::day(2));
    }
    const AppEnvironment& made = make();
    EXPECT_EQ(made.dueNow().value(), 1);
    EXPECT_EQ(made.totalWords().value(), 2);
}

TEST_F(AppEnvironmentTest, eachChangeOnAnyThreadBringsOneRefreshOnTheMainThread) {
    AppEnvironment& made = make();
    std::jthread([&] {
        test::addWord(made.store(), "one");
        test::addWord(made.store(), "two");
    }).join();
    test::addWord(made.store(), "three");
    EXPECT_EQ(queue.size(), 3U);
    EXPECT_EQ(made.dueNow().value(), 0) << "stale until the refresh";
    queue.runAll();
    EXPECT_EQ(made.dueNow().value(), 3);
    EXPECT_EQ(made.totalWords().value(), 3);
    test::addWord(made.store(), "four");
    environment.reset();
    queue.runAll();
}

TEST_F(AppEnvironmentTest, aMissingOrBrokenDictionaryIsLeftOut) {
    EXPECT_EQ(make().dictionary(), nullptr);
    EXPECT_EQ(make(directory.file("missing.sqlite")).dictionary(), nullptr);
    std::ofstream(directory.file("broken.sqlite")) << "no database";
    EXPECT_FALSE(make(directory.file("broken.sqlite")).lookup().lookup("run", {}, {}).isWord);
    test::makeSampleDictionary(directory.file("dict.sqlite"));
    EXPECT_TRUE(make(directory.file("dict.sqlite")).lookup().lookup("run", {}, {}).isWord);
}

TEST_F(AppEnvironmentTest, aBookThatFailsIsToldOfOnceAnHourAndRemembered) {
    AppEnvironment& made = make();
    test::addWord(made.store(), "one");
    queue.runAll();
    SQLiteDB((data / AppEnvironment::bookName).string(), false).execute("DROP TABLE card");
    made.refreshCounts();
    made.refreshCounts();
    queue.runAll();
    EXPECT_FALSE(made.isBookReadable());
    ASSERT_EQ(notifier.notifications.size(), 1U);
    EXPECT_THAT(notifier.notifications.front().body, HasSubstr("生词本 "));
    now += std::chrono::minutes(59);
    EXPECT_ANY_THROW(test::addWord(made.store(), "two"));
    queue.runAll();
    EXPECT_EQ(notifier.notifications.size(), 1U);
    EXPECT_EQ(made.bookTrouble().value()->when, now);
    now += std::chrono::minutes(1);
    made.refreshCounts();
    queue.runAll();
    EXPECT_EQ(notifier.notifications.size(), 2U);
}

TEST_F(AppEnvironmentTest, aPlaceThatCannotHoldTheBookIsReportedAsItIs) {
    std::ofstream(directory.file("file")) << "x";
    data = directory.file("file/data");
    EXPECT_THROW(make(), fs::filesystem_error);
    data = directory.file("emptied");
    fs::create_directories(data);
    std::ofstream((data / "tavik.sqlite-wal").string()) << "words";
    EXPECT_THROW(make(), EmptiedBookError);
    const fs::path kept = setEmptiedBookAside((data / "tavik.sqlite").string(), now);
    EXPECT_TRUE(fs::exists(kept.string() + "-wal"));
    EXPECT_EQ(make().totalWords().value(), 0);
}

TEST_F(AppEnvironmentTest, capturesFollowTheTrustAndOutliveTheEnvironment) {
    using State = AccessibilityTrust::State;
    const auto failure = [](const SelectionCapture& capture) {
        std::string what;
        std::jthread([&] {
            try {
                static_cast<void>(capture.capture());
            } catch (const CaptureError& error) {
                what = error.what();
            }
        }).join();
        return what;
    };
    const SelectionCapture early = make().capture();
    EXPECT_THAT(failure(early), HasSubstr("权限"));
    trust.current.set(State::trusted);
    EXPECT_THAT(failure(early), HasSubstr("没有读取到"));
    const SelectionCapture late = make().capture();
    EXPECT_THAT(failure(late), HasSubstr("没有读取到"));
    trust.current.set(State::notTrusted);
    EXPECT_THAT(failure(late), HasSubstr("权限"));
    environment.reset();
    trust.current.set(State::trusted);
    EXPECT_THAT(failure(late), HasSubstr("权限"));
}

TEST_F(AppEnvironmentTest, aStartOptionIsToldOfOnceForEachProgram) {
    trust.current.set(AccessibilityTrust::State::trusted);
    const auto captureFrom = [this](const std::string& bundleID) {
        workspace.front = {"浏览器", bundleID, 4'000'000'000, "", {}, {}};
        EXPECT_THROW(make().capture().capture(), CaptureError);
        EXPECT_EQ(queue.size(), 1U);
        queue.runAll();
    };
    captureFrom("Google-chrome");
    ASSERT_EQ(notifier.notifications.size(), 1U);
    EXPECT_EQ(notifier.notifications.front().title, "需要启动选项才能读取网页");
    EXPECT_THAT(notifier.notifications.front().body, HasSubstr("「Google-chrome」"));
    EXPECT_THAT(notifier.notifications.front().body, HasSubstr("--force-renderer-accessibility"));
    captureFrom("google-chrome");
    EXPECT_EQ(notifier.notifications.size(), 1U);
    captureFrom("google-chrome\nbeta");
    captureFrom("google-chrome\nbeta");
    EXPECT_EQ(notifier.notifications.size(), 2U);
    const AppSettings again(preferences, keychain, AppSettings::standardKeychainAccount);
    EXPECT_EQ(again.startOptionTold.value(), "google-chrome\ngoogle-chrome\uFFFDbeta");
    for (int i = 0; i < 200; ++i)
        captureFrom("chromium-" + std::to_string(i));
    EXPECT_LT(notifier.notifications.size(), 200U) << "a desktop that makes fun of us";
    EXPECT_LT(settings.startOptionTold.value().size(), 2100U);
}

TEST_F(AppEnvironmentTest, captureLogsGoWhereTheyAreTold) {
    make().captureLog().write(CaptureError(CaptureError::Kind::notTrusted), now);
    EXPECT_THAT(test::readFile(directory.file("capture.log")), HasSubstr("权限"));
}

TEST_F(AppEnvironmentTest, speechIsAmericanALittleSlowerAndEndsWhatIsSpoken) {
    make().speech().speak("run");
    EXPECT_EQ(speech.calls, (std::vector<std::string>{"stop", "en-US 0.9: run"}));
}

} // namespace
} // namespace tavik
