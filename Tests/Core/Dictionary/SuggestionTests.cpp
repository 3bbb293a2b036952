#include "Dictionary/OfflineDictionary.h"
#include "Support/SampleDictionary.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace tavik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SuggestionTest : public testing::Test {
protected:
    SuggestionTest() {
        test::makeSampleDictionary(path);
        change(R"(
            INSERT INTO dict(word, translation) VALUES
             ('app', 'n. 应用'), ('apply', 'v. 应用'), ('appear', 'v. 出现'), ('apple', 'n. 苹果'),
             ('appt', 'abbr. 约会'), ('appa', '[计] 某物'), ('apple pie', '苹果派'), ('appui', '支撑'),
             ('a_b', '甲'), ('axb', '乙'), ('appé', '丙'), ('e.g.', '例如'), ('given', 'a. 给定的');
            INSERT INTO ranks VALUES
             ('apple', 2446), ('apply', 522), ('appear', 290), ('given', 5100), ('give', 90),
             ('give up', 9000), ('Polish', 4344), ('nowhere', 1);)");
    }

    void change(const std::string& sql) const {
        SQLiteDB db(path, false);
        db.execute("PRAGMA journal_mode=DELETE");
        db.execute(sql);
    }

    std::vector<std::string> suggested(std::string_view prefix, int limit = 20) const {
        std::vector<std::string> words;
        for (const Suggestion& suggestion : OfflineDictionary(path).suggestions(prefix, limit))
            words.push_back(suggestion.word);
        return words;
    }

    test::TemporaryDirectory directory;
    std::string path = directory.file("dict.sqlite");
};

TEST_F(SuggestionTest, theWordItselfComesFirstThenCommonWordsThenShortOnes) {
    const std::vector<std::string> all{"app",   "appear",    "apply", "apple", "appé",
                                       "appui", "apple pie", "appa",  "appt"};
    EXPECT_EQ(suggested("app"), all);
    for (std::size_t limit = 1; limit <= all.size(); ++limit)
        EXPECT_THAT(suggested("app", static_cast<int>(limit)),
                    testing::ElementsAreArray(all.data(), limit));
    EXPECT_THAT(suggested("ap", 2), ElementsAre("appear", "apply"));
    EXPECT_THAT(suggested("app", 0), IsEmpty());
    EXPECT_THAT(suggested("app", -1), IsEmpty());
    EXPECT_EQ(suggested("app", std::numeric_limits<int>::max()), all);
}

TEST_F(SuggestionTest, caseDoesNotMatterAndEverySpellingIsAWordOfItsOwn) {
    EXPECT_THAT(suggested("polish"), ElementsAre("polish", "Polish"));
    EXPECT_THAT(suggested("Polish"), ElementsAre("Polish", "polish"));
    EXPECT_THAT(suggested("POL"), ElementsAre("Polish", "polish"));
    EXPECT_EQ(suggested("APP"), suggested("app"));
    EXPECT_THAT(suggested("APPÉ"), ElementsAre("appé"));
}

TEST_F(SuggestionTest, theGlossIsTheFirstLineOfTheTranslation) {
    change("INSERT INTO dict(word, translation) VALUES"
           "('qa', char(10) || '　' || char(10) || '  甲 ' || char(13) || char(10) || '乙'),"
           "('qb', NULL), ('qc', 7), ('qc', '丙')");
    EXPECT_THAT(OfflineDictionary(path).suggestions("q", 9),
                ElementsAre(Suggestion{"qa", "甲"}, Suggestion{"qc", "7"}, Suggestion{"qb", ""}));
}

TEST_F(SuggestionTest, aBlankAtTheEndAsksForPhrases) {
    EXPECT_THAT(suggested("give"), ElementsAre("give", "given", "give up"));
    EXPECT_THAT(suggested("give "), ElementsAre("give", "give up"));
    EXPECT_THAT(suggested("\t give \u3000 u"), ElementsAre("give up"));
    // Of nothing that was typed so far a phrase begins.
    EXPECT_EQ(suggested("appl "), suggested("appl"));
}

TEST_F(SuggestionTest, punctuationCountsOnlyWhereAHeadwordHasIt) {
    for (const char* const typed : {"don'", "don’", "don‘t", "DONʼT"})
        EXPECT_THAT(suggested(typed), ElementsAre("don't")) << typed;
    EXPECT_THAT(suggested("e.g."), ElementsAre("e.g."));
    EXPECT_EQ(suggested("“apple,”"), suggested("apple"));
    EXPECT_THAT(suggested("a_"), ElementsAre("a_b"));
    for (const char* const nothing :
         {"a%e", "a*e", "app[a-z]y", "", " ", "'", "%", "42", "苹", "苹果", "zz"})
        EXPECT_THAT(suggested(nothing), IsEmpty()) << nothing;
}

TEST_F(SuggestionTest, aFileWithoutRanksAnswersFromItsIndex) {
    change("DROP TABLE ranks");
    EXPECT_NO_THROW(OfflineDictionary(path).verify());
    EXPECT_THAT(suggested("app"), ElementsAre("app", "appé", "apple", "apply", "appui", "appear",
                                              "apple pie", "appa", "appt"));
    EXPECT_THAT(suggested("app", 2), ElementsAre("app", "appé"));
}

} // namespace
} // namespace tavik
