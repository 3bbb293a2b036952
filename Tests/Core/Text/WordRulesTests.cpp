#include "Text/TextUtil.h"

#include <gtest/gtest.h>

namespace tavik {
namespace {

using namespace TextUtil;

TEST(WordRules, normalFormTrimsPunctuationAtTheEndsOnly) {
    EXPECT_EQ(normalizeWord("  “Hello,   World!”  "), "hello, world");
    EXPECT_EQ(normalizeWord("$don't\u00A0\r\n stop…"), "don't stop");
    EXPECT_EQ(normalizeWord("ÇA VA\u3000ΟΔΟΣ"), "ça va οδος");
    for (const char* const nothing : {"", "--", " \t\n“”…+=", "\u2028\u3000"})
        EXPECT_EQ(normalizeWord(nothing), "");
    EXPECT_EQ(normalizeWord("a\xFF z"), "a\uFFFD z");
}

TEST(WordRules, phoneticsBecomeIPA) {
    EXPECT_EQ(normalizePhonetic("ә'baʊt"), "əˈbaʊt");
    EXPECT_EQ(normalizePhonetic("'sɪ:,ә"), "ˈsɪːˌə");
}

TEST(WordRules, candidatesAreShortEnglishWordsAndPhrases) {
    const std::string ofForty(40, 'a');
    for (const std::string& yes :
         {std::string("run"), std::string("give up on it"), std::string("“well-known”"),
          std::string("don't"), std::string("naïve"), std::string("T恤"), ofForty})
        EXPECT_TRUE(isLookupCandidate(yes)) << yes;
    for (const std::string& no : {std::string("a b c d e"), std::string("COVID-19"),
                                  std::string("你好"), std::string("привет"), std::string("don’t"),
                                  std::string("a/b"), std::string("…"), ofForty + "a"})
        EXPECT_FALSE(isLookupCandidate(no)) << no;
}

TEST(WordRules, lengthIsCountedInCharactersNotInScalars) {
    std::string accented;
    for (int i = 0; i < 40; ++i)
        accented += "e\u0301";
    EXPECT_TRUE(isLookupCandidate(accented));
    EXPECT_FALSE(isLookupCandidate(accented + "e"));
}

TEST(WordRules, typographicApostrophesAreStraightenedOnlyToMakeACandidate) {
    EXPECT_EQ(straightenedCandidate(" don’t "), "don't");
    EXPECT_EQ(straightenedCandidate("o’clock\u02BCs"), "o'clock's");
    EXPECT_EQ(straightenedCandidate("don't"), std::nullopt);
    EXPECT_EQ(straightenedCandidate("‘run’"), std::nullopt);
    EXPECT_EQ(straightenedCandidate("don’t 42"), std::nullopt);
}

std::string wordAt(std::u16string_view text, std::int64_t index) {
    const auto range = wordRange(text, index);
    if (!range) return "-";
    const auto word = text.substr(static_cast<std::size_t>(range->location),
                                  static_cast<std::size_t>(range->length));
    return {word.begin(), word.end()};
}

TEST(WordRules, theWordAtAPointIsAWholeEnglishWord) {
    EXPECT_EQ(wordAt(u"don't stop", 2), "don't");
    EXPECT_EQ(wordAt(u"don't stop", 5), "-");
    EXPECT_EQ(wordAt(u"say 'well-known' -", 9), "well-known");
    EXPECT_EQ(wordAt(u"the dogs' tails", 5), "dogs");
    EXPECT_EQ(wordAt(u"'tis", 0), "-");
    EXPECT_EQ(wordAt(u"'tis", 1), "tis");
    EXPECT_EQ(wordAt(u"I am", 0), "-");
    EXPECT_EQ(wordAt(u"go", -1), "-");
    EXPECT_EQ(wordAt(u"go", 2), "-");
    EXPECT_EQ(wordAt(u"", 0), "-");
}

TEST(WordRules, partsOfLongerTokensAreNoWords) {
    EXPECT_EQ(wordAt(u"café", 0), "-");
    EXPECT_EQ(wordAt(u"abc123", 1), "-");
    EXPECT_EQ(wordAt(u"在word中", 2), "-");
    EXPECT_EQ(wordAt(u"在 word 中", 3), "word");
    EXPECT_EQ(wordAt(u"\U0001F600run\U0001F600", 3), "run");
    EXPECT_EQ(wordAt(std::u16string(200, u'a'), 100), "-");
    EXPECT_EQ(wordAt(std::u16string(61, u'a'), 0), std::string(61, 'a'));
}

TEST(Highlight, splitsAroundTheLongestFormWhateverItsCase) {
    EXPECT_EQ(highlight("She was Running late", {"run", "running"}),
              (Highlight{"She was ", "Running", " late"}));
    EXPECT_EQ(highlight("他说 I don’t run, he did.", {"", "run"}),
              (Highlight{"他说 I don’t ", "run", ", he did."}));
    EXPECT_EQ(highlight("well-known? (known.*)", {"known.*"}), std::nullopt);
    EXPECT_EQ(highlight("a well-known man", {"well-known"}),
              (Highlight{"a ", "well-known", " man"}));
    EXPECT_EQ(highlight("prune runner", {"run"}), std::nullopt);
    EXPECT_EQ(highlight("nothing here", {}), std::nullopt);
}

TEST(ChineseScript, traditionalBecomesSimplified) {
    EXPECT_EQ(toSimplified("熊靠近時他不得不逃命。 It's OK"), "熊靠近时他不得不逃命。 It's OK");
}

} // namespace
} // namespace tavik
