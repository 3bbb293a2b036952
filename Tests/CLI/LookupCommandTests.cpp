#include "Support/ChildProcess.h"
#include "Support/SampleDictionary.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace tavik {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

class LookupCommandTest : public testing::Test {
protected:
    LookupCommandTest() { test::makeSampleDictionary(path); }

    test::ProcessResult lookUp(std::vector<std::string> arguments, const std::string& input = {}) {
        arguments.insert(arguments.begin(), {TAVIK_CLI, "lookup", "--dictionary", path});
        return test::runProcess(arguments, input);
    }

    test::TemporaryDirectory directory;
    std::string path = directory.file("dict.sqlite");
};

TEST_F(LookupCommandTest, aWordIsShownWithItsBaseFormSensesAndExamples) {
    const auto result = lookUp({"running"});
    EXPECT_EQ(result.exitCode, 0);
    for (const char* const part :
         {"run  /rʌn/", "running → run", "  n. 跑\n", "过去式 ran", "例句", "  They ran.\n"})
        EXPECT_THAT(result.output, HasSubstr(part));
    EXPECT_THAT(result.output, Not(HasSubstr("\x1b"))) << "no colour in a pipe";
}

TEST_F(LookupCommandTest, exitCodesTellFoundFromNotFoundFromFailed) {
    EXPECT_EQ(lookUp({"zyzzy"}).exitCode, 2);
    EXPECT_EQ(lookUp({"run", "zyzzy"}).exitCode, 2);
    EXPECT_EQ(lookUp({"--nonsense"}).exitCode, 1);
    path = directory.file("missing.sqlite");
    const auto missing = lookUp({"run"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_THAT(missing.errors, HasSubstr("打不开词典"));
    test::writeFile(path, std::string(4096, 'x'));
    EXPECT_THAT(lookUp({"run"}).errors, HasSubstr("已损坏"));
    EXPECT_EQ(lookUp({"--help"}).exitCode, 0);
}

TEST_F(LookupCommandTest, severalWordsAreAPhraseOrElseLookedUpOneByOne) {
    EXPECT_EQ(json::parse(lookUp({"--json", "gave", "up"}).output)["lemma"], "give up");
    EXPECT_THAT(lookUp({"mice", "went"}).output,
                testing::AllOf(HasSubstr("mouse"), HasSubstr("go")));
    const auto lines = lookUp({"--json"}, "mice\n\n  \ngave up\r\n你好");
    EXPECT_EQ(lines.exitCode, 2);
    std::istringstream output(lines.output);
    std::vector<std::string> lemmas;
    for (std::string line; std::getline(output, line);)
        lemmas.push_back(json::parse(line)["lemma"]);
    EXPECT_THAT(lemmas, testing::ElementsAre("mouse", "give up", "你好"));
}

TEST_F(LookupCommandTest, videosAreAddressesOfTheHeadword) {
    const auto word =
        json::parse(lookUp({"gave up", "--videos", "--accent", "uk", "--json"}).output);
    EXPECT_EQ(word["videos"]["youglish"], "https://youglish.com/pronounce/give%20up/english/uk");
    EXPECT_EQ(word["videos"].size(), 3U);
    EXPECT_THAT(lookUp({"run", "--videos"}).output, HasSubstr("yarn-find?text=run\n"));
    EXPECT_EQ(lookUp({"run", "--accent", "mars"}).exitCode, 1);
}

TEST_F(LookupCommandTest, jsonHoldsEveryField) {
    const auto run = json::parse(
        lookUp({"--json", "Running", "--sentence", "One. He was running\nlate. Two."}).output);
    EXPECT_EQ(run["selection"], "Running");
    EXPECT_EQ(run["sentence"], "He was running late.");
    EXPECT_EQ(run["headword"], "run");
    EXPECT_EQ(run["isWord"], true);
    EXPECT_EQ(run["entry"]["exchange"]["p"], "ran");
    EXPECT_EQ(run["examples"].size(), 3U);
    const auto unknown = json::parse(lookUp({"--json", "z\xFFy"}).output);
    EXPECT_EQ(unknown["entry"], nullptr);
    EXPECT_EQ(unknown["sentence"], nullptr);
}

TEST_F(LookupCommandTest, theSentenceIsShownWithTheWordMarked) {
    EXPECT_THAT(lookUp({"running", "--sentence", "She ran away."}).output,
                HasSubstr("She [ran] away."));
    EXPECT_THAT(lookUp({"running", "--sentence", "Nothing here."}).output,
                HasSubstr("  Nothing here."));
}

TEST_F(LookupCommandTest, hostileTextDoesNotReachTheTerminal) {
    EXPECT_THAT(lookUp({"\x1b]0;x\x07"}).output, Not(HasSubstr("\x1b")));
    EXPECT_THAT(lookUp({"--\x1b[2J"}).errors, Not(HasSubstr("\x1b")));
}

TEST_F(LookupCommandTest, outputThatCannotBeWrittenIsAnError) {
    const auto result =
        test::runProcess({"/bin/sh", "-c", R"(exec "$0" lookup --dictionary "$1" run > /dev/full)",
                          TAVIK_CLI, path});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, HasSubstr("写不出去"));
}

} // namespace
} // namespace tavik
