#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace tavik {
namespace {

using testing::HasSubstr;
using testing::Not;

class DictProgramTest : public testing::Test {
protected:
    std::vector<std::string> command(const std::vector<std::string>& more) const {
        std::vector<std::string> all{TAVIK_DICT,          "--output",          output,
                                     "--ecdict",          samples + "/ecdict", "--wordnet",
                                     samples + "/wordnet"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    std::string samples = TAVIK_SAMPLES;
    test::TemporaryDirectory directory;
    std::string output = directory.file("dict.sqlite");
};

TEST_F(DictProgramTest, aBuildEndsWithASummaryAndNamesTheSkippedLines) {
    const auto result = test::runProcess(command({"--tatoeba", samples + "/tatoeba.tsv"}));
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.output, HasSubstr("词条 28，"));
    EXPECT_THAT(result.output, HasSubstr("跳过的行 6"));
    EXPECT_THAT(result.errors, HasSubstr("ecdict.csv：跳过 3 行（格式不对），第 13、16、21 行"));
    EXPECT_THAT(result.errors, Not(HasSubstr("\x1b"))) << "no bar in a log";
}

TEST_F(DictProgramTest, failuresAreOneSentenceThatSaysWhatToDo) {
    EXPECT_THAT(test::runProcess({TAVIK_DICT}).errors, HasSubstr("缺少 --ecdict"));
    const auto missing = test::runProcess(command({"--sentences", directory.file("none.tsv")}));
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_THAT(missing.errors, HasSubstr("none.tsv：文件不存在或不可读"));
    const auto foreign = test::runProcess(command({"--ecdict", samples + "/wordnet"}));
    EXPECT_EQ(foreign.exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(output));
}

TEST_F(DictProgramTest, aStoppedBuildLeavesTheOldDictionaryAndNothingElse) {
    test::writeFile(output, "old");
    std::string arguments;
    for (const std::string& argument : command({"--sentences", directory.file("pipe")}))
        arguments += '\'' + argument + "' ";
    // The build waits for the pipe until it was told to stop.
    const auto result = test::runProcess(
        {"/bin/sh", "-c",
         "mkfifo \"$0\"; " + arguments
             + "& build=$!; exec 3>\"$0\"; kill -TERM $build; exec 3>&-; wait $build",
         directory.file("pipe")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, HasSubstr("已中断，原有的词典没有改动"));
    EXPECT_EQ(test::readFile(output), "old");
    std::filesystem::remove(directory.file("pipe"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.path()), {}), 1);
}

} // namespace
} // namespace tavik
