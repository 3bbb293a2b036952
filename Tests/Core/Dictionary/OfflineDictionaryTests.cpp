#include "Dictionary/DictionaryJSON.h"
#include "Dictionary/DictionarySQL.h"
#include "Dictionary/OfflineDictionary.h"
#include "Support/SampleDictionary.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <thread>

namespace tavik {
namespace {

using testing::ElementsAre;

class OfflineDictionaryTest : public testing::Test {
protected:
    OfflineDictionaryTest() { test::makeSampleDictionary(path); }

    /// The sample dictionary after `sql` was run on it.
    OfflineDictionary changed(const std::string& sql) {
        SQLiteDB db(path, false);
        db.execute("PRAGMA journal_mode=DELETE");
        db.execute(sql);
        return OfflineDictionary(path);
    }

    test::TemporaryDirectory directory;
    std::string path = directory.file("dict.sqlite");
};

TEST_F(OfflineDictionaryTest, everyColumnOfAnEntryIsRead) {
    const OfflineDictionary dictionary(path);
    const DictEntry run{
        .word = "run",
        .phonetic = "rʌn",
        .translations = {"n. 跑", "v. 奔跑"},
        .definitions = {"n. the act of running"},
        .tags = {"zk", "gk"},
        .collins = 5,
        .oxford = true,
        .exchange = {{"p", "ran"}, {"d", "run"}, {"i", "running"}, {"3", "runs"}, {"s", "runs"}}};
    EXPECT_EQ(dictionary.entry("  Run\n"), run);
    EXPECT_EQ(nlohmann::json(run).get<DictEntry>(), run);
    EXPECT_EQ(dictionary.entry(" \t\n"), std::nullopt);
    EXPECT_EQ(dictionary.entry("walk"), std::nullopt);
}

TEST_F(OfflineDictionaryTest, theExactCaseIsPreferred) {
    const OfflineDictionary dictionary(path);
    EXPECT_EQ(dictionary.entry("Polish")->phonetic, "ˈpəuliʃ");
    EXPECT_EQ(dictionary.entry("polish")->phonetic, "ˈpɒliʃ");
    EXPECT_TRUE(dictionary.entry("POLISH"));
}

TEST_F(OfflineDictionaryTest, oddColumnContentsReadAsEmpty) {
    const auto dictionary = changed(R"(
        INSERT INTO dict VALUES('odd', 7, 'n. 苹果' || char(10) || char(10) || '  n. 苹果树' || char(9),
            char(8232) || '　', ' a  b ', 'four', '1', 'p:went/d:gone//3:goes/x/:y/0:/s:a:b/p:again');
        INSERT INTO dict VALUES('huge', NULL, NULL, '1. only English', NULL, 1e300, 1.0, NULL);)");
    const auto odd = dictionary.entry("odd");
    ASSERT_TRUE(odd);
    EXPECT_EQ(odd->phonetic, "7");
    EXPECT_THAT(odd->translations, ElementsAre("n. 苹果", "n. 苹果树"));
    EXPECT_THAT(odd->definitions, ElementsAre());
    EXPECT_THAT(odd->tags, ElementsAre("a", "b"));
    EXPECT_EQ(odd->collins, 0);
    EXPECT_EQ(odd->exchange, (std::map<std::string, std::string>{
                                 {"p", "again"}, {"d", "gone"}, {"3", "goes"}, {"s", "a:b"}}));
    const auto huge = dictionary.entry("huge");
    EXPECT_EQ(huge->collins, 0);
    EXPECT_TRUE(huge->oxford);
    EXPECT_EQ(huge->brief(), "1. only English");
    EXPECT_EQ(DictEntry().brief(), "");
}

TEST_F(OfflineDictionaryTest, theBaseFormComesFromTheDictionaryThenTheLemmatizerThenTheWord) {
    const OfflineDictionary dictionary(path);
    EXPECT_EQ(dictionary.lemma("Went."), "go");
    EXPECT_EQ(dictionary.lemma("mice"), "mouse");
    EXPECT_EQ(dictionary.lemma("gave  up"), "give up");
    EXPECT_EQ(dictionary.lemma("gave in"), "gave in");
    EXPECT_EQ(dictionary.lemma("foos"), "foos");
    EXPECT_EQ(dictionary.lemma("jame"), "jame");
    EXPECT_EQ(dictionary.lemma("“Zyzzy,”"), "zyzzy");
    EXPECT_EQ(dictionary.lemma("…"), "");
}

TEST_F(OfflineDictionaryTest, withoutALemmaTableTheLemmatizerHasNoAnswer) {
    const auto dictionary = changed("DROP TABLE lemmas");
    EXPECT_EQ(dictionary.lemma("mice"), "mice");
    EXPECT_EQ(dictionary.lemma("went"), "go");
    EXPECT_THROW(dictionary.verify(), SQLiteDB::Error);
}

TEST_F(OfflineDictionaryTest, examplesAreTranslatedOnesFirstAndNoTwoAlike) {
    const OfflineDictionary dictionary(path);
    const auto examples = dictionary.examples("Run!", 3);
    ASSERT_EQ(examples.size(), 3U);
    EXPECT_EQ(examples[0].en, "He had to run for his life when the bear came near.");
    EXPECT_EQ(examples[0].zh, "熊靠近时他不得不逃命。");
    EXPECT_EQ(examples[1].en, "They ran.");
    EXPECT_EQ(examples[2].zh, "");
    EXPECT_EQ(dictionary.examples("run", 1).size(), 1U);
}

TEST_F(OfflineDictionaryTest, aPhraseIsSearchedAsOne) {
    const OfflineDictionary dictionary(path);
    EXPECT_THAT(dictionary.examples("give up", 3),
                ElementsAre(ExampleSentence{"She gave up.", "她放弃了。"}));
    EXPECT_EQ(dictionary.examples("don't", 3).size(), 1U);
    EXPECT_EQ(dictionary.examples("up give", 3).size(), 0U);
    for (const char* const nothing : {"42", "", "\"", "'", "- -", "* OR run"})
        EXPECT_THAT(dictionary.examples(nothing, 3), ElementsAre()) << nothing;
    EXPECT_THAT(dictionary.examples("run", 0), ElementsAre());
    EXPECT_THAT(dictionary.examples("run", -1), ElementsAre());
}

TEST_F(OfflineDictionaryTest, rowsWithoutTextAreNoExamples) {
    const auto dictionary = changed(R"(
        DROP TABLE examples; CREATE TABLE examples(id INTEGER PRIMARY KEY, en, zh);
        INSERT INTO examples VALUES(1, 'run one', NULL), (2, 7, 'x'), (3, 'they run', '跑');)");
    EXPECT_THAT(dictionary.examples("run", 3), ElementsAre(ExampleSentence{"they run", "跑"}));
}

TEST_F(OfflineDictionaryTest, everyStatementFindsItsRowsThroughAnIndex) {
    SQLiteDB db(path, true);
    for (const std::string statement :
         {DictionarySQL::entry, DictionarySQL::lemma, DictionarySQL::examples,
          DictionarySQL::spellings, DictionarySQL::mostCommonWords, DictionarySQL::commonWords,
          DictionarySQL::otherWords}) {
        for (const auto& step : db.query("EXPLAIN QUERY PLAN " + statement)) {
            const std::string detail(*step.text("detail"));
            const bool isFullText = detail.find("VIRTUAL TABLE INDEX") != std::string::npos;
            // What a subquery has found already, in the statements on words.
            const bool isLimited = detail == "SCAN found";
            EXPECT_TRUE(isFullText || isLimited || detail.find("SCAN") == std::string::npos)
                << detail;
        }
    }
    std::string plan;
    const std::string mostCommonWords = DictionarySQL::mostCommonWords;
    for (const auto& step : db.query("EXPLAIN QUERY PLAN " + mostCommonWords))
        plan += *step.text("detail");
    EXPECT_THAT(plan, testing::HasSubstr("COVERING INDEX ranks_most_common"));
}

TEST_F(OfflineDictionaryTest, manyThreadsMayAskAtOnce) {
    const OfflineDictionary dictionary(path);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 100; ++round) {
                EXPECT_EQ(dictionary.lemma("went"), "go");
                EXPECT_EQ(dictionary.examples("run", 3).size(), 3U);
            }
        });
    for (auto& thread : threads)
        thread.join();
}

} // namespace
} // namespace tavik
