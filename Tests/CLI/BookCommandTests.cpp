#include "Base/Date.h"
#include "Base/PreferencesFile.h"
#include "Support/ChildProcess.h"
#include "Support/PseudoTerminal.h"
#include "Support/SampleDictionary.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include <filesystem>
#include <thread>

namespace tavik {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class BookCommandTest : public testing::Test {
protected:
    BookCommandTest() { test::makeSampleDictionary(dictionary); }

    /// The program on the book in `data`, with the sample dictionary where it takes one.
    std::vector<std::string> command(std::vector<std::string> arguments) const {
        for (const char* const withDictionary : {"save", "show", "delete", "review"})
            if (arguments.front() == withDictionary)
                arguments.insert(arguments.begin() + 1, {"--dictionary", dictionary});
        arguments.insert(arguments.begin(), {"/usr/bin/env", "TAVIK_DATA_DIR=" + data,
                                             "XDG_CONFIG_HOME=" + settings, TAVIK_CLI});
        return arguments;
    }

    test::ProcessResult run(const std::vector<std::string>& arguments,
                            const std::string& input = {}) const {
        return test::runProcess(command(arguments), input);
    }

    json item(const std::string& word) const {
        return json::parse(run({"show", "--json", word}).output);
    }

    test::TemporaryDirectory directory;
    std::string dictionary = directory.file("dict.sqlite");
    std::string data = directory.file("new/data");
    std::string settings = directory.file("settings");
};

TEST_F(BookCommandTest, aWordIsSavedFoundShownAndDeletedUnderItsBaseForm) {
    const auto saved = run({"save", "Running", "--sentence", "One. He was running late. Two.",
                            "--app", "Firefox", "--url", "https://www.example.com/"});
    EXPECT_EQ(saved.exitCode, 0);
    EXPECT_THAT(saved.output, HasSubstr("run  已保存\n"));
    EXPECT_THAT(run({"save", "running", "--sentence", "They are running."}).output,
                HasSubstr("新的句子"));
    EXPECT_THAT(run({"save", "running", "--sentence", "They are running."}).output,
                Not(HasSubstr("新的")));
    EXPECT_THAT(run({"list"}).output,
                AllOf(HasSubstr("run"), HasSubstr("2 次"), HasSubstr("n. 跑")));
    EXPECT_EQ(run({"list", "late"}).exitCode, 0);
    EXPECT_EQ(run({"list", "early"}).exitCode, 2);
    const auto shown = run({"show", "running"});
    EXPECT_THAT(shown.output,
                AllOf(HasSubstr("run  /rʌn/"), HasSubstr("He was [running] late."),
                      HasSubstr("They are [running]."), HasSubstr("Firefox · example.com")));
    EXPECT_EQ(item("run")["encounters"].size(), 2U);
    EXPECT_THAT(run({"delete", "running"}).output, HasSubstr("已从生词本删除 run"));
    EXPECT_EQ(run({"delete", "running"}).exitCode, 2);
    EXPECT_EQ(run({"show", "run"}).exitCode, 2);
}

TEST_F(BookCommandTest, standardInputSavesAWordALineWithItsSentence) {
    const auto saved =
        run({"save", "--json"}, "\xEF\xBB\xBFmice\tI saw mice.\n\n  \ndon’t\ngave up\nzyzzy\n…\n");
    EXPECT_EQ(saved.exitCode, 1) << "the last line has no word";
    EXPECT_THAT(saved.output, HasSubstr(R"("isNewWord":true,"lemma":"give up")"));
    EXPECT_EQ(item("mouse")["encounters"][0]["sentence"], "I saw mice.");
    EXPECT_EQ(item("zyzzy")["word"]["brief"], "");
    EXPECT_EQ(json::parse(run({"stats", "--json"}).output)["states"]["new"], 4);
    EXPECT_EQ(run({"show", "Don’t"}).exitCode, 0);
}

TEST_F(BookCommandTest, manyProgramsMayCreateAndFillOneBookAtOnce) {
    constexpr int programs = 8;
    for (int round = 0; round < 5; ++round) {
        std::filesystem::remove_all(data);
        std::vector<std::jthread> threads;
        for (int program = 0; program < programs; ++program)
            threads.emplace_back([this, program] {
                const auto saved =
                    run({"save", "word" + std::string(1, static_cast<char>('a' + program))});
                EXPECT_EQ(saved.exitCode, 0) << saved.errors;
            });
        threads.clear();
        EXPECT_EQ(json::parse(run({"stats", "--json"}).output)["wordCount"], programs);
    }
}

TEST_F(BookCommandTest, theClockFollowsEveryWayToNameATimeZone) {
    run({"save", "run"});
    for (const auto& [zone, hours] : {std::pair("CST-8", 8), {"Asia/Shanghai", 8}, {"UTC", 0}}) {
        auto shown = command({"show", "run"});
        shown.insert(shown.begin() + 1, std::string("TZ=") + zone);
        const Date saved = currentDate() + std::chrono::hours(hours);
        EXPECT_THAT(test::runProcess(shown).output, HasSubstr(iso8601(saved).substr(0, 10)))
            << zone;
    }
}

TEST_F(BookCommandTest, theBookIsPrivateAndItsTroublesAreChineseSentences) {
    run({"save", "run"});

    struct stat status {};

    ASSERT_EQ(stat((data + "/tavik.sqlite").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0077U, 0U);
    test::writeFile(data + "/tavik.sqlite", "junk");
    const auto damaged = run({"list"});
    EXPECT_EQ(damaged.exitCode, 1);
    EXPECT_THAT(damaged.errors, HasSubstr("已损坏"));
    data = "/proc/nowhere";
    EXPECT_THAT(run({"due"}).errors, HasSubstr("TAVIK_DATA_DIR"));
}

TEST_F(BookCommandTest, reviewAsksRevealsRatesAndBringsForgottenWordsBack) {
    run({"save", "mice", "--sentence", "I saw mice.", "--meaning", "老鼠们"});
    run({"save", "run"});
    EXPECT_EQ(json::parse(run({"due", "--limit", "1", "--json"}).output)["word"]["lemma"], "mouse");
    // A rating before the answer is no rating; then mouse again, run good, mouse good.
    const auto review = run({"review"}, "3 1 3 3");
    EXPECT_EQ(review.exitCode, 0);
    EXPECT_THAT(
        review.output,
        AllOf(HasSubstr("1 / 2  mouse\n  I saw [mice].\n"), HasSubstr("3 / 3  mouse"),
              HasSubstr("1 忘记 10 分钟后   2 模糊 1 天后   3 记得 3 天后   4 太简单 16 天后"),
              HasSubstr("本句：老鼠们"), HasSubstr("本次复习了 3 次")));
    EXPECT_EQ(item("mouse")["card"]["reps"], 2);
    EXPECT_EQ(item("run")["card"]["state"], "review");
    EXPECT_THAT(run({"review"}, "").output, HasSubstr("现在没有需要复习的单词"));
    EXPECT_EQ(json::parse(run({"stats", "--json"}).output)["reviewedToday"], 3);
}

TEST_F(BookCommandTest, aReviewMayBeLeftAndGoneOnWithTheOtherScheduler) {
    run({"save"}, "run\nmice\n");
    EXPECT_THAT(run({"review", "--scheduler", "fixed"}, " 4q").output, HasSubstr("还有 1 个"));
    EXPECT_EQ(item("run")["card"]["stability"], 1) << "the second rung";
    EXPECT_THAT(run({"review", "--retention", "0.8"}, " ").output, HasSubstr("3 记得 8 天后"));
    PreferencesFile preferences(settings + "/Tavik/preferences.json");
    preferences.set(PreferenceKeys::desiredRetention, 0.8);
    EXPECT_THAT(run({"review"}, " ").output, HasSubstr("3 记得 8 天后"));
    EXPECT_THAT(run({"review", "--retention", "0.9"}, " ").output, HasSubstr("3 记得 3 天后"));
    preferences.set(PreferenceKeys::schedulerKind, std::string("fixed"));
    EXPECT_THAT(run({"review"}, " ").output, HasSubstr("3 记得 1 天后"));
    for (const auto& wrong : {std::pair("--retention", "1.5"), {"--scheduler", "mine"}})
        EXPECT_EQ(run({"review", wrong.first, wrong.second}).exitCode, 1);
}

TEST_F(BookCommandTest, inATerminalKeysAreReadAtOnceAndTheTerminalIsLeftAsItWas) {
    run({"save"}, "run\nmice\n");
    // The key Home, whose sequence holds a digit, is no rating, whole or in parts; Ctrl+C ends.
    const auto left = test::runInTerminal(
        command({"review"}),
        {{"结束）", " \x1b[1~"}, {"太简单", "\x1b"}, {"", "[1~3"}, {"2 / 2", "\x03"}});
    EXPECT_THAT(left.screen, AllOf(HasSubstr("本次复习了 1 次"), HasSubstr("还有 1 个")));
    EXPECT_EQ(left.exitCode, 0);
    EXPECT_TRUE(left.isRestored);
    EXPECT_EQ(item("run")["card"]["state"], "review") << "rated 3, not 1";
    const auto shell = [&](const std::string& script,
                           const std::vector<test::TerminalStep>& steps) {
        return test::runInTerminal(
            {"/bin/sh", "-c", "export TAVIK_DATA_DIR='" + data + "'; " + script}, steps);
    };
    const auto killed = shell("(sleep 0.3; kill -TERM $$) & exec " TAVIK_CLI " review", {});
    EXPECT_THAT(killed.screen, HasSubstr("还有 1 个没有复习")) << "ended in order";
    EXPECT_EQ(killed.exitCode, 0);
    EXPECT_TRUE(killed.isRestored);
    const auto unread = shell(TAVIK_CLI " review | head -n 1", {{"1 / 1", " "}});
    EXPECT_TRUE(unread.isRestored) << "nobody reads what it prints";
}

TEST_F(BookCommandTest, aReviewNeverRatesAnotherWordThanTheOneShown) {
    run({"save", "run"});
    const std::string other = directory.file("other");
    run({"save", "mice"});
    run({"backup", other});
    run({"delete", "run"});
    run({"delete", "mouse"});
    run({"save", "went"});
    // Between the question and the rating another program restores a book with other words.
    const auto review = test::runInTerminal(
        {"/bin/sh", "-c",
         "export TAVIK_DATA_DIR='" + data + "'; (sleep 0.4; " TAVIK_CLI " restore '" + other
             + "' >/dev/null; echo swapped) & exec " TAVIK_CLI " review"},
        {{"swapped", " "}, {"太简单", "4"}});
    EXPECT_THAT(review.screen, HasSubstr("已经不在生词本里"));
    for (const char* const word : {"run", "mouse"})
        EXPECT_EQ(item(word)["card"]["reps"], 0) << word;
}

TEST_F(BookCommandTest, exportBackupAndRestoreGoThroughFiles) {
    run({"save", "run", "--sentence", "I run."});
    const std::string csv = directory.file("words.csv");
    EXPECT_EQ(run({"export", csv}).exitCode, 0);
    EXPECT_EQ(test::readFile(csv), run({"export"}).output);
    EXPECT_THAT(run({"export", csv}).errors, HasSubstr("--force"));
    EXPECT_THAT(run({"export", data + "/tavik.sqlite", "--force"}).errors,
                HasSubstr("就是生词本自己"));
    EXPECT_EQ(run({"export", csv, "--force", "--format", "anki"}).exitCode, 0);
    EXPECT_THAT(test::readFile(csv), HasSubstr("#separator:tab"));
    EXPECT_EQ(run({"export", "--format", "pdf"}).exitCode, 1);

    const std::string backup = directory.file("backup.sqlite");
    EXPECT_THAT(run({"backup", backup}).output, HasSubstr("1 个单词、1 个句子、0 次复习"));
    run({"save", "mice"});
    const auto restored = run({"restore", backup});
    EXPECT_THAT(restored.output, AllOf(HasSubstr("已恢复"), HasSubstr("before-restore-")));
    EXPECT_EQ(run({"show", "mouse"}).exitCode, 2);
    EXPECT_THAT(run({"restore", csv}).errors, HasSubstr("损坏"));
}

} // namespace
} // namespace tavik
