#include "Text/CharacterClasses.h"
#include "Text/SentenceTokenizer.h"
#include "Text/Unicode.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tavik {
namespace {

/// `text` with "|" at every sentence boundary inside it.
std::string marked(const std::string& text) {
    const std::u16string units = utf16FromUTF8(text);
    std::u16string result;
    for (const UTF16Range range : sentenceRanges(units)) {
        if (range.location > 0) result += u'|';
        result += units.substr(static_cast<std::size_t>(range.location),
                               static_cast<std::size_t>(range.length));
    }
    return utf8FromUTF16(result);
}

std::string withoutBars(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '|'), text.end());
    return text;
}

/// Each text is cut at its bars and nowhere else.
void expectCuts(const std::vector<std::string>& cases) {
    for (const std::string& expected : cases)
        EXPECT_EQ(marked(withoutBars(expected)), expected);
}

TEST(SentenceTokenizer, abbreviationsAreWholeWordsAndEndNoSentence) {
    expectCuts({
        "Mr. Smith met Mrs. Jones. |They left.",
        "I saw Dr. Lee and Prof. Dr. Kahn today.",
        "He lives in St. Louis near Mt. Hood.",
        "Gen. Grant and Lt. Col. Ames rode on.",
        "Sen. Warren and Gov. Brown disagreed. |So did Rep. Lee.",
        "Bring fruit, e.g. Fuji apples. |Then go.",
        "The capital, i.e. Paris, is large.",
        "England vs. Germany ended in Roe v. Wade style.",
        "See cf. Smith et al. (2010) for more. |It helps.",
        "Use the app. |It works.",
        "The company is Best. |Next comes the casino. |Go.",
        "It was the worst. |St. Paul agreed.",
        "He sat. |Then he stood.",
        "I said no. |You said yes.",
    });
}

TEST(SentenceTokenizer, someAbbreviationsGoOnOnlyBeforeANumber) {
    expectCuts({
        "He lives at No. 10 Downing Street.",
        "See Fig. 3 Above and p. 12 Below.",
        "On Jan. 5 Congress met. |On Sat. 6 Members left.",
        "Read vol. 2 First.",
        "Is that so? |No. |I doubt it.",
        "It happened c. 1900 Anno Domini.",
    });
}

TEST(SentenceTokenizer, initialsAndDottedCapitalsDependOnWhatFollows) {
    expectCuts({
        "J. R. R. Tolkien wrote it. |George W. Bush read it.",
        "The U.S. Army left the U.K. |The war was over.",
        "She was born in Washington D.C. |It was cold.",
        "Take vitamin C. |It helps.",
        "J.R.R. Tolkien taught there.",
        "So do I. |Tomorrow we go.",
        "It was plan B. |They had no other.",
        "He earned a Ph.D. |Then he left.",
        "We met at 5 p.m. on Monday.",
        "Sold by Smith & Co. Ltd. in 1990.",
    });
}

TEST(SentenceTokenizer, numbersAndListMarksAreNoSentences) {
    expectCuts({
        "Pi is 3.14 or so. |It costs $1.50 now.",
        "Version 2.0.1 is out. |Get it.",
        "1. The first point. |2. The second point.",
        "(1) Open the box. |(2) Read on.",
        "II. The Second Part",
        "He was born in 1990. |In 2000 he left.",
        "Chapter 3. |The Return",
    });
}

TEST(SentenceTokenizer, quotedSpeechBelongsToItsSpeaker) {
    expectCuts({
        "“Stop!” he shouted. |Nobody moved.",
        R"("Why?" she asked. |"Because," he said.)",
        "“Really?” I asked. |“Yes.” |She smiled.",
        R"("Run!" John shouted. |They ran.)",
        "'Is it far?' asked Tom. |'No.'",
        "He said, “Go home.” |Then he left.",
        R"(She whispered, "I know." |He nodded.)",
        "«Non!» he cried.",
        "“It’s over.” |Everyone cheered.",
    });
}

TEST(SentenceTokenizer, bracketsInMidSentenceStayTogether) {
    expectCuts({
        "He left (why? nobody knows) at ten. |She stayed.",
        "The results (see Smith [2010]. Also Lee) were clear. |Good.",
        "It ended. |(It had begun late.) |We left.",
        "It works (really!). |Try it.",
        "They won (3-2!) again. |Hooray!",
        "A smile :( is no bracket. |Really.",
    });
}

TEST(SentenceTokenizer, piecesWithoutLettersBelongToTheSentenceBefore) {
    expectCuts({
        "Really?! ... |Yes.",
        "It is done. ✓",
        "Good luck! 😀🎉",
        "Hello!!! |Who is there???",
        "He paused . . . and went on.",
        "I thought... maybe not. |Fine.",
    });
}

TEST(SentenceTokenizer, addressesAndNamesWithDotsStayWhole) {
    expectCuts({
        "Visit https://example.com/?q=Word&x=1 today. |Thanks.",
        "Mail me at a.b@example.com. |I will answer.",
        "Open README.md and main.cpp. |Then build.",
        "Node.js and ASP.NET differ. |So what?",
        "Search http://x.org/!Go or quit.",
    });
}

TEST(SentenceTokenizer, chineseAndMixedTextIsCutAtItsOwnMarks) {
    expectCuts({
        "他来了。|她走了！|真的吗？|好。",
        "他说：“走吧。”|然后走了。",
        "我用 Dr. Smith 的书。|It is good. |很好。",
        "Python 3.11 很快。|用它吧！",
        "「你好。」|他說。",
    });
}

TEST(SentenceTokenizer, aLineBreakAlwaysEndsASentence) {
    expectCuts({
        "A heading\n|The text begins. |It goes on.",
        "Dear Mr.\n|Smith is here.",
        "One.\n|\n|(two) three.",
        "1.\n|The first.",
    });
}

/// What is cut wrongly, each with its reason; a case that comes right moves up.
TEST(SentenceTokenizer, theseAreKnownToBeCutWrongly) {
    const std::vector<std::string> wrong{
        // The trade name's mark looks like an end, and joining before every small letter would
        // join chat messages that begin with one.
        "Yahoo! is old.",
        // Dots before a capital are an end more often than a pause.
        "Well ... I see.",
        // The typographic ellipsis is no end for Unicode, whatever follows.
        "Wait… |What?",
        // Nothing tells whether an emoji belongs to what precedes or to what follows it.
        "What a day! 😀 |We won.",
        "It is done. ✓ |Next.",
        // A full stop before a small letter is no end for Unicode.
        "a) Wash it. |b) Dry it.",
    };
    for (const std::string& right : wrong)
        EXPECT_NE(marked(withoutBars(right)), right);
}

TEST(SentenceTokenizer, theRangesCoverTheTextWithoutGaps) {
    for (const std::string text :
         {"", " ", "a", "One. Two! (x? y) \n Mr. Z.", "\xF0\x9F\x98\x80!"}) {
        std::int64_t end = 0;
        for (const UTF16Range range : sentenceRanges(utf16FromUTF8(text))) {
            EXPECT_EQ(range.location, end);
            EXPECT_GT(range.length, 0);
            end += range.length;
        }
        EXPECT_EQ(end, static_cast<std::int64_t>(utf16FromUTF8(text).size()));
    }
}

} // namespace
} // namespace tavik
