#include "Base/AsideFile.h"
#include "Dict/RecordingObserver.h"
#include "Dictionary/OfflineDictionary.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"
#include "TavikDict/BuildError.h"
#include "TavikDict/DictionaryBuilder.h"
#include "TavikDict/SilentObserver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavik {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

class DictionaryBuilderTest : public testing::Test {
protected:
    BuildPlan plan() const {
        const fs::path samples = TAVIK_SAMPLES;
        return {.ecdict = samples / "ecdict",
                .wordNet = samples / "wordnet",
                .sentences = samples / "sentences.tsv",
                .tatoeba = samples / "tatoeba.tsv",
                .output = output};
    }

    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(directory.path()))
            names.push_back(entry.path().filename());
        return names;
    }

    /// The error that a build under `restrictions` ends with.
    std::string failureInChild(const test::Restrictions& restrictions,
                               const BuildPlan& wanted) const {
        return test::inChild(restrictions, [&]() -> std::string {
            SilentObserver silent;
            buildDictionary(wanted, silent);
            return "succeeded";
        });
    }

    test::TemporaryDirectory directory;
    fs::path output = directory.file("dict.sqlite");
    test::RecordingObserver observer;
};

TEST_F(DictionaryBuilderTest, theBuiltFileAnswersAsADictionary) {
    const auto summary = buildDictionary(plan(), observer);
    const OfflineDictionary dictionary(output);
    EXPECT_NO_THROW(dictionary.verify());

    const auto run = dictionary.entry("run");
    EXPECT_THAT(run->translations, ElementsAre("n. 跑", "v. 奔跑"));
    EXPECT_EQ(run->collins, 5);
    EXPECT_TRUE(run->oxford);
    EXPECT_EQ(dictionary.entry("ran")->collins, 0);
    EXPECT_EQ(dictionary.entry("number")->brief(), "n. 数, \"号码\"");
    EXPECT_EQ(dictionary.entry("about-turn")->phonetic, "əbajtˈtəːn");
    EXPECT_EQ(dictionary.lemma("does"), "do");
    EXPECT_EQ(dictionary.lemma("gave up"), "give up");
    EXPECT_EQ(dictionary.lemma("number"), "number");
    EXPECT_THAT(dictionary.examples("give up", 3),
                UnorderedElementsAre(ExampleSentence{"She gave up.", "她放弃了。"},
                                     ExampleSentence{"He gave up.", ""}));
    EXPECT_THAT(dictionary.examples("fast", 9),
                UnorderedElementsAre(ExampleSentence{"Run fast", "快跑。"},
                                     ExampleSentence{"he RAN fast", ""}));
    EXPECT_THAT(dictionary.suggestions("give", 9),
                ElementsAre(Suggestion{"give", "v. 给"}, Suggestion{"give up", "放弃"}));
    EXPECT_THAT(dictionary.suggestions("r", 2),
                ElementsAre(Suggestion{"run", "n. 跑"}, Suggestion{"running", "n. 赛跑, 跑步"}));

    EXPECT_EQ(summary.headwords, 28);
    EXPECT_EQ(summary.examples, 15);
    EXPECT_EQ(summary.translatedExamples, 11);
    EXPECT_EQ(summary.fileSize, fs::file_size(output));
}

TEST_F(DictionaryBuilderTest, malformedLinesAreSkippedAndReportedWithTheirNumber) {
    const auto summary = buildDictionary(plan(), observer);
    EXPECT_THAT(observer.skipped,
                UnorderedElementsAre("ecdict.csv:13", "ecdict.csv:16", "ecdict.csv:21",
                                     "lemma.en.txt:7", "sentences.tsv:2", "tatoeba.tsv:7",
                                     "data.noun:4"));
    EXPECT_EQ(summary.skippedLines, 7);
}

TEST_F(DictionaryBuilderTest, theFileIsReadableOnReadOnlyMediaAndItsSourcesAreNamedBesideIt) {
    test::writeFile(output.string() + ".tavik-part", "left by a killed build");
    buildDictionary(plan(), observer);
    EXPECT_THAT(files(), UnorderedElementsAre("dict.sqlite", "dict-attribution.txt",
                                              "dict-tatoeba-authors.txt"));
    const std::string contents = test::readFile(output);
    EXPECT_EQ(contents.substr(18, 2), "\x01\x01") << "the file is in write-ahead-log mode";
    const std::string attribution = test::readFile(directory.file("dict-attribution.txt"));
    for (const char* const source : {"MIT License, sample", "Free for any use.",
                                     "This software is a sample.\nIt is free.", "CC BY 2.0 FR"})
        EXPECT_THAT(attribution, HasSubstr(source));
    EXPECT_THAT(test::readFile(directory.file("dict-tatoeba-authors.txt")),
                HasSubstr("Run fast\tCC-BY 2.0 (France) Attribution: sample #3 (ann) & #4 (bo)\n"));
}

TEST_F(DictionaryBuilderTest, aBuildThatFailsOrIsStoppedLeavesTheOldFileAlone) {
    test::writeFile(output, "old");
    for (const char* const stage : {"读取词表", "写入词条", "写入例句", "整理索引"}) {
        observer.onStage = [&](const std::string& title) {
            if (title == stage) throw BuildError("stopped");
        };
        EXPECT_THROW(buildDictionary(plan(), observer), BuildError) << stage;
        EXPECT_THAT(files(), ElementsAre("dict.sqlite"));
    }
    observer.onStage = nullptr;

    BuildPlan foreign = plan();
    foreign.tatoeba = directory.file("missing.tsv");
    EXPECT_THROW(buildDictionary(foreign, observer), BuildError);
    foreign = plan();
    foreign.ecdict = foreign.wordNet;
    EXPECT_THROW(buildDictionary(foreign, observer), BuildError);
    foreign = plan();
    foreign.output = directory.file("none/dict.sqlite");
    EXPECT_THROW(buildDictionary(foreign, observer), FileError);

    EXPECT_TRUE(test::readFile(output) == "old");
    EXPECT_THAT(files(), ElementsAre("dict.sqlite"));
}

TEST_F(DictionaryBuilderTest, aFullDiskOrAForeignDirectoryIsAClearErrorAndLosesNothing) {
    test::writeFile(output, "old");
    for (const std::size_t room : {100UL, 20000UL})
        EXPECT_THAT(failureInChild({.maxFileSize = room}, plan()), HasSubstr("磁盘空间")) << room;
    fs::permissions(directory.path(),
                    fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    EXPECT_THAT(failureInChild({.unprivileged = true}, plan()), HasSubstr("权限"));
    EXPECT_TRUE(test::readFile(output) == "old");
    EXPECT_THAT(files(), ElementsAre("dict.sqlite"));
}

TEST_F(DictionaryBuilderTest, twoBuildsNeverWriteTheSameFile) {
    const DirectoryLock other(directory.path());
    EXPECT_THROW(buildDictionary(plan(), observer), FileError);
    EXPECT_THAT(files(), ElementsAre());
}

} // namespace
} // namespace tavik
