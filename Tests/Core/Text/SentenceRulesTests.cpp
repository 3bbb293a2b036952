#include "Text/TextUtil.h"
#include "Text/Unicode.h"

#include <gtest/gtest.h>

#include <thread>

namespace tavik {
namespace {

constexpr std::size_t usualLength = 400;

/// The sentence around the first occurrence of `selected` in `text`.
std::optional<std::string> around(const std::string& text, const std::string& selected,
                                  std::size_t maxLength = usualLength) {
    const std::u16string units = utf16FromUTF8(text);
    const std::u16string wanted = utf16FromUTF8(selected);
    return TextUtil::sentence(
        units,
        {static_cast<std::int64_t>(units.find(wanted)), static_cast<std::int64_t>(wanted.size())},
        maxLength);
}

TEST(SentenceRules, theSentenceOfTheSelectionComesOnOneLine) {
    EXPECT_EQ(around("One is here. Two went\nhome\rearly. Three.", "went"), "Two went home early.");
    EXPECT_EQ(around("One 1.5 m long. It ran.", "ran"), "It ran.");
    EXPECT_EQ(around("他来了。She ran away! 走吧。", "ran"), "She ran away!");
}

TEST(SentenceRules, aSelectionBeforeASentenceEndBelongsToIt) {
    EXPECT_EQ(around("First one. Second one.", "First one. Second"), "First one.");
    EXPECT_EQ(TextUtil::sentence(u"First. Second.", {7, 0}, usualLength), "Second.");
}

TEST(SentenceRules, paragraphsNeverLeakIntoEachOther) {
    EXPECT_EQ(around("A heading\n\nthe word is here", "word"), "the word is here");
    EXPECT_EQ(around("A heading\r\n\r\nthe word is here", "word"), "the word is here");
    EXPECT_EQ(around("A heading\r\nthe word", "word"), "the word");
}

TEST(SentenceRules, rangesOutsideTheTextGiveNothing) {
    const std::u16string text = u"It ran \U0001F600.";
    constexpr auto huge = std::numeric_limits<std::int64_t>::max();
    for (const UTF16Range range :
         {UTF16Range{}, UTF16Range{0, 11}, UTF16Range{-1, 2}, UTF16Range{3, -1},
          UTF16Range{4, huge}, UTF16Range{8, 1}, UTF16Range{3, 5}, UTF16Range{10, 0}})
        EXPECT_EQ(TextUtil::sentence(text, range, usualLength), std::nullopt)
            << range.location << '+' << range.length;
    EXPECT_EQ(TextUtil::sentence(u"", {0, 0}, usualLength), std::nullopt);
    EXPECT_EQ(TextUtil::sentence(u" \n\n ", {0, 1}, usualLength), std::nullopt);
}

TEST(SentenceRules, aLongSentenceIsCutAroundTheSelection) {
    std::string text;
    for (int i = 0; i < 90; ++i)
        text += i == 45 ? "selected, " : "abcdefgh, ";
    const auto cut = around(text, "selected");
    ASSERT_TRUE(cut);
    EXPECT_EQ(cut->substr(0, 3), "…");
    EXPECT_EQ(cut->substr(cut->size() - 3), "…");
    EXPECT_EQ(characterCount(*cut), 2 + 200 + 8 + 200U);
    EXPECT_NE(cut->find("selected"), std::string::npos);

    EXPECT_EQ(around("word and a long tail of words", "word", 10), "…word and…");
    EXPECT_EQ(around("a long head and word", "word", 10), "…and word…");
}

TEST(SentenceRules, aLongSentenceWithoutTheSelectedTextKeepsItsBeginning) {
    EXPECT_EQ(TextUtil::sentence(u"abc defghij klm", {4, 0}, 7), "abc def…");
    EXPECT_EQ(around("abc\n\ndef gh", "abc\n\ndef", 2), "ab…");
}

TEST(SentenceRules, lengthIsCountedInCharacters) {
    std::string flags;
    for (int i = 0; i < 10; ++i)
        flags += "🇨🇳";
    EXPECT_EQ(around("a" + flags, "a", 11), "a" + flags);
    EXPECT_EQ(around("a" + flags, "a", 10), "…a🇨🇳🇨🇳🇨🇳🇨🇳🇨🇳…");
}

TEST(SentenceRules, everyRuleMayRunOnManyThreads) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 50; ++round) {
                EXPECT_EQ(around("One. It ran far. Two.", "ran"), "It ran far.");
                EXPECT_EQ(TextUtil::toSimplified("時"), "时");
                EXPECT_TRUE(TextUtil::highlight("It ran", {"ran"}));
                EXPECT_TRUE(TextUtil::isLookupCandidate("ran"));
            }
        });
    for (auto& thread : threads)
        thread.join();
}

} // namespace
} // namespace tavik
