#include "Lookup/WordLookup.h"
#include "Support/SampleDictionary.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace tavik {
namespace {

class WordLookupTest : public testing::Test {
protected:
    WordLookupTest() { test::makeSampleDictionary(directory.file("dict.sqlite")); }

    WordLookup lookUp(std::string_view selection) {
        const OfflineDictionary dictionary(directory.file("dict.sqlite"));
        return lookUpWord(&dictionary, selection);
    }

    test::TemporaryDirectory directory;
};

TEST_F(WordLookupTest, aSelectionBecomesItsBaseFormWithEntryAndExamples) {
    const auto lookup = lookUp("  Running ");
    EXPECT_EQ(lookup.selection, "Running");
    EXPECT_EQ(lookup.lemma, "run");
    EXPECT_EQ(lookup.headword(), "run");
    EXPECT_EQ(lookup.entry->word, "run");
    EXPECT_EQ(lookup.examples.size(), 3U);
    EXPECT_TRUE(lookup.isWord);
}

TEST_F(WordLookupTest, whatIsNoCandidateIsNotLookedUp) {
    for (const char* const selection : {"Give up on it now", "COVID-19", "你好。", ""}) {
        const auto lookup = lookUp(selection);
        EXPECT_FALSE(lookup.isWord) << selection;
        EXPECT_TRUE(lookup.examples.empty()) << selection;
    }
    EXPECT_EQ(lookUp("COVID-19").lemma, "covid-19");
    EXPECT_EQ(lookUpWord(nullptr, "Run").lemma, "run");
}

TEST_F(WordLookupTest, aCurlyApostropheIsStraightenedOnlyForAHeadword) {
    EXPECT_EQ(lookUp("Don’t").lemma, "don't");
    EXPECT_EQ(lookUp("Don’t").selection, "Don’t");
    EXPECT_TRUE(lookUp("don’t").isWord);
    EXPECT_EQ(lookUp("Shan’t").lemma, "shan’t");
}

} // namespace
} // namespace tavik
