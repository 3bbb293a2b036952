#include "TavikDict/CommonWords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace tavik {
namespace {

using testing::ElementsAre;
using testing::Pair;

const LemmaTable lemmas{{"gave", "give"}, {"trees", "tree"}};

std::map<std::string, std::int64_t> ranks(const std::vector<Headword>& headwords,
                                          const std::vector<std::string>& sentences = {}) {
    std::vector<ExampleSentence> examples;
    for (const std::string& sentence : sentences)
        examples.push_back({sentence, ""});
    std::map<std::string, std::int64_t> result;
    for (const auto& [word, rank] : commonWords(headwords, lemmas, examples))
        result.emplace(word, rank);
    return result;
}

Headword unranked(const std::string& word, const std::string& translation = "译文") {
    Headword headword;
    headword.word = word;
    headword.translation = translation;
    return headword;
}

Headword ranked(const std::string& word, std::int64_t bnc, std::int64_t frq,
                const std::string& tag = "") {
    Headword headword = unranked(word);
    headword.bnc = bnc;
    headword.frq = frq;
    headword.tag = tag;
    return headword;
}

TEST(CommonWordsTest, whatNoWordListNamesIsRankedByCurrentEnglish) {
    EXPECT_THAT(ranks({ranked("London", 248, 0, "zk"), ranked("internet", 31055, 1467, "zk"),
                       ranked("cos", 609, 25587), ranked("erm", 133, 0), ranked("n't", 0, 29),
                       unranked("appt")}),
                ElementsAre(Pair("London", 248), Pair("cos", 25587), Pair("erm", 1330),
                            Pair("internet", 1467)));
}

TEST(CommonWordsTest, phrasesAreCountedInTheExamplesInAnyForm) {
    const auto result =
        ranks({unranked("give up"), unranked("New York"), unranked("up in"), unranked("don't"),
               unranked("trees"), unranked("is it", "[网络] 是它"), ranked("give", 90, 91, "zk")},
              {"He gave up, in New York.", "Give up; don't! Is it so?", "They give\u2014up trees.",
               "give new york"});
    EXPECT_THAT(result, ElementsAre(Pair("New York", 50000), Pair("don't", 100000),
                                    Pair("give", 90), Pair("give up", 50000)));
}

} // namespace
} // namespace tavik
