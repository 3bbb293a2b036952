#include "Dict/RecordingObserver.h"
#include "Support/TemporaryDirectory.h"
#include "TavikDict/BuildError.h"
#include "TavikDict/CSVLine.h"
#include "TavikDict/ECDICT.h"
#include "TavikDict/ExampleSources.h"
#include "TavikDict/WordNet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavik {
namespace {

using testing::ElementsAre;

TEST(CSVLine, quotedFieldsKeepCommasAndQuotes) {
    EXPECT_THAT(*csvFields(R"(a,"b, ""c""",,"")"), ElementsAre("a", "b, \"c\"", "", ""));
    EXPECT_THAT(*csvFields(""), ElementsAre(""));
    for (const char* const broken : {R"(a,"b)", R"("a"b,c)", R"(a"b,c)", R"("a""")"})
        EXPECT_EQ(csvFields(broken).has_value(), std::string(broken) == R"("a""")") << broken;
}

TEST(ECDICT, aLineBecomesAHeadwordWithItsEscapesResolved) {
    const auto run = parseHeadword(
        R"(run,"'rʌn\\\\:n",s going\nfast\nn a run,n. 跑\r\nv. 奔跑 \\o/ \t,,5,1,zk gk,20,10,p:ran/0:go,,)");
    ASSERT_TRUE(run);
    EXPECT_EQ(run->phonetic, "'rʌnə:n");
    EXPECT_EQ(run->definition, "a. going\nfast\nn. a run");
    EXPECT_EQ(run->translation, "n. 跑\nv. 奔跑 \\o/ \\t");
    EXPECT_EQ(run->collins, 5);
    EXPECT_EQ(run->rank(), 10);
    EXPECT_EQ(parseHeadword("a,,,,,,,,7,0,,,")->rank(), 7);
    EXPECT_EQ(parseHeadword("a,,,,,,,,7,0,,,")->oxford, std::nullopt);
    for (const char* const broken : {"a,b", "a,,,,,x,,,0,0,,,", "a,,,,,-1,,,0,0,,,",
                                     " ,,,,,,,,0,0,,,", "a,,,,,99999999999999999999,,,0,0,,,"})
        EXPECT_FALSE(parseHeadword(broken)) << broken;
}

TEST(ECDICT, theBaseFormOfAnExchangeCanBeReplaced) {
    EXPECT_EQ(exchangeForm("10:x/0:doe/1:s/0:do", "0"), "do");
    EXPECT_EQ(exchangeForm("s:dos", "0"), "");
    EXPECT_EQ(exchangeWith("0:doe/1:s", "0", "do"), "1:s/0:do");
    EXPECT_EQ(exchangeWith("0:doe", "0", std::nullopt), "");
    EXPECT_EQ(exchangeWith("", "0", "do"), "0:do");
}

TEST(ExampleSources, aByteOrderMarkAndWindowsLineEndsAreNoPartOfTheText) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("pairs.tsv");
    test::writeFile(path,
                    "\uFEFFHi.\t嗨。\r\n\tno English\nbad \xFF byte\tx\n a \t b \t\nBye.\t再见。");
    test::RecordingObserver observer;
    const auto pairs = readSentencePairs(path, observer);
    ASSERT_EQ(pairs.size(), 2U);
    EXPECT_EQ(pairs[0].sentence, (ExampleSentence{"Hi.", "嗨。"}));
    EXPECT_EQ(pairs[1].sentence, (ExampleSentence{"Bye.", "再见。"}));
    EXPECT_THAT(observer.skipped, ElementsAre("pairs.tsv:2", "pairs.tsv:3", "pairs.tsv:4"));
    EXPECT_THROW(readTatoeba(directory.file("missing"), observer), BuildError);
}

TEST(WordNetGlosses, examplesAreTheQuotedPhrases) {
    EXPECT_THAT(quotedExamples(R"( used with "to"; "he ran;"  "a fast run")"),
                ElementsAre("he ran", "a fast run"));
    EXPECT_THAT(quotedExamples("no quote"), ElementsAre());
}

} // namespace
} // namespace tavik
