#include "Platform/Linux/AtSpi/DisplayScale.h"
#include "Platform/Linux/AtSpi/NodeText.h"
#include "Platform/Linux/AtSpi/TerminalColumns.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace tavik {
namespace {

using Ends = std::pair<std::int64_t, std::int64_t>;

constexpr std::int64_t farAway = std::numeric_limits<std::int32_t>::max();

std::u16string unitsIn(const NodeText& text, std::int64_t start, std::int64_t end) {
    const UTF16Range range = text.range(start, end);
    return text.units().substr(static_cast<std::size_t>(range.location),
                               static_cast<std::size_t>(range.length));
}

// "Two 😀😀 words" in the three ways in which applications count.
TEST(NodeTextTest, KnowsHowAnApplicationCounts) {
    const NodeText codePoints("Two 😀😀 words", 12);
    EXPECT_EQ(unitsIn(codePoints, 7, 12), u"words");
    EXPECT_EQ(codePoints.toOffset(9), 7);
    EXPECT_EQ(unitsIn(codePoints, 4, 5), u"😀");

    const NodeText units("Two 😀😀 words", 14);
    EXPECT_EQ(unitsIn(units, 9, 14), u"words");
    EXPECT_EQ(units.toOffset(9), 9);
    EXPECT_EQ(units.toUnits(5), 4) << "in the middle of a character";

    const NodeText padded("Two 😀\uFEFF😀\uFEFF words", 14);
    EXPECT_EQ(padded.units(), u"Two 😀😀 words");
    EXPECT_EQ(unitsIn(padded, 9, 14), u"words");
    EXPECT_EQ(padded.toOffset(9), 9);
}

TEST(NodeTextTest, StaysInTheTextWhateverItIsTold) {
    for (const std::int64_t count : {std::int64_t{3}, std::int64_t{4}, farAway, -farAway}) {
        const NodeText text("a😀b", count);
        EXPECT_EQ(unitsIn(text, -farAway, farAway), u"a😀b");
        EXPECT_EQ(unitsIn(text, farAway, -1), u"a😀b");
        EXPECT_EQ(text.toUnits(farAway), 4);
        EXPECT_GE(text.toOffset(farAway), 3);
        EXPECT_EQ(text.toOffset(-5), 0);
    }
    EXPECT_EQ(unitsIn(NodeText("", farAway), 3, 9), u"");
    EXPECT_EQ(NodeText("a\xEF\xB7\x90"
                       "b\xEF\xB7\x91",
                       4)
                  .units(),
              u"a\u2029b\u2029");
}

// "Emoji 😀😀 so gregarious", whose last word begins with the twelfth character.
TEST(NodeTextTest, UndoesASecondConversionOfASelection) {
    const NodeText text("Emoji 😀😀 so gregarious", 22);
    const Ends right(12, 22);
    const Ends wrong(10, 20);
    EXPECT_EQ(text.repaired(wrong, 22), right);
    EXPECT_EQ(text.repaired(wrong, 12), right) << "selected backwards";
    EXPECT_EQ(text.repaired(wrong, -1), right) << "no caret";
    EXPECT_EQ(text.repaired(right, 22), right) << "an application that has been mended";
    EXPECT_EQ(NodeText("plain text", 10).repaired({2, 5}, 9), (Ends(2, 5))) << "nothing to undo";
}

TEST(NodeTextTest, FindsASelectionWhoseEndsCannotBeConverted) {
    const auto found = [](std::string_view all, std::int64_t count, std::int64_t caret) {
        const NodeText text(all, count);
        const auto range = text.inconvertible(caret).value_or(UTF16Range{0, 0});
        return text.units().substr(static_cast<std::size_t>(range.location),
                                   static_cast<std::size_t>(range.length));
    };
    EXPECT_EQ(found("Emoji 😀😀 gregarious ends.", 25, 19), u"gregarious");
    EXPECT_EQ(found("😀😀😀word.", 8, 7), u"word");
    EXPECT_EQ(found("😀😀😀😀 ab cd", 10, 7), u"ab") << "both ends";
    EXPECT_EQ(found("😀😀😀😀 ab cd", 10, 5), u"ab") << "selected backwards";
    EXPECT_EQ(found("Plain text", 10, 5), u"");
    EXPECT_EQ(found("A 😀", 3, -1), u"");
}

TEST(NodeTextTest, CountsEmbeddedObjects) {
    const NodeText text("a\uFFFC😀\uFFFC\uFFFC", 5);
    EXPECT_EQ(text.embeddedObjectsBefore(0), 0);
    EXPECT_EQ(text.embeddedObjectsBefore(4), 1);
    EXPECT_EQ(text.embeddedObjectsBefore(farAway), 3);
}

TEST(NodeTextTest, KnowsTheMarksOfLists) {
    for (const std::u16string_view mark : {u"• ", u"◦ ", u"1. ", u"12) ", u"▪\u00A0"})
        EXPECT_EQ(listMarkLength(std::u16string(mark) + u"Bring a lunch."),
                  static_cast<std::int64_t>(mark.size()))
            << mark.size();
    for (const std::u16string_view text :
         {u"Bring a lunch.", u"", u"•", u"3.5 litres", u"1984 was read", u"A. Smith"})
        EXPECT_EQ(listMarkLength(text), 0);
}

TEST(TerminalColumnsTest, AreCountedFromTheStartOfTheRow) {
    const auto found = [](std::u16string_view all, AtSpiRange ends, std::int64_t columns) {
        const auto range = rangeOfColumns(all, ends, columns).value_or(UTF16Range{0, 0});
        return all.substr(static_cast<std::size_t>(range.location),
                          static_cast<std::size_t>(range.length));
    };
    EXPECT_EQ(found(u"Look 😀 how whimsical this is.\n", {12, 21}, 80), u"whimsical");
    EXPECT_EQ(found(u"😀😀\n读到 ambiguous 这个词。\n", {8, 17}, 80), u"ambiguous") << "second row";
    EXPECT_EQ(found(u"他来了。昨天我读到 ambiguous 这个词", {19, 28}, 0), u"ambiguous");
    EXPECT_EQ(found(u"读到这个词", {8, 10}, 80), u"词");
    // Twelve columns, so that the second row begins with "gregarious".
    EXPECT_EQ(found(u"他来了 then gregarious", {9, 19}, 12), u"gregarious");
    EXPECT_EQ(found(u"他来了", {40, 50}, 80), u"");
    EXPECT_FALSE(hasUnevenCharacters(u"plain – “text” é"));
    EXPECT_TRUE(hasUnevenCharacters(u"a 😀"));
}

TEST(DisplayScaleTest, IsFoundByTheWindow) {
    FrontApplication front;
    front.contents = {400, 300, 1280, 960};
    front.frame = {398, 276, 1284, 986};
    const ScreenRect word{300, 200, 50, 10};

    EXPECT_EQ(DisplayScale(front, {400, 300, 1280, 960}).pixels(word), word);
    EXPECT_EQ(DisplayScale(front, {398, 276, 1284, 986}).pixels(word), word) << "with its frame";
    EXPECT_EQ(DisplayScale(front, {200, 150, 640, 480}).pixels(word),
              (ScreenRect{600, 400, 100, 20}));
    EXPECT_EQ(DisplayScale(front, {199, 138, 642, 493}).pixels(word),
              (ScreenRect{600, 400, 100, 20}))
        << "with its frame";
    // On a second screen layouts begin where that screen begins, not where it would after scaling.
    EXPECT_EQ(DisplayScale(front, {400, 300, 640, 480}).pixels({410, 310, 5, 5}),
              (ScreenRect{420, 320, 10, 10}));
    // What is no scale of the window says nothing.
    for (const ScreenRect& other :
         {ScreenRect{0, 0, 900, 200}, ScreenRect{0, 0, 0, 0}, ScreenRect{0, 0, -5, 9}})
        EXPECT_EQ(DisplayScale(front, other).pixels(word), word);
}

TEST(DisplayScaleTest, PlacesOutsideTheWindowAreNone) {
    FrontApplication front;
    front.frame = {100, 100, 400, 300};
    EXPECT_TRUE(standsInWindow({150, 150, 20, 10}, front));
    EXPECT_TRUE(standsInWindow({50, 90, 500, 400}, front));
    EXPECT_FALSE(standsInWindow({150, 450, 20, 10}, front));
    EXPECT_FALSE(standsInWindow({0, 150, 20, 10}, front));
}

} // namespace
} // namespace tavik
