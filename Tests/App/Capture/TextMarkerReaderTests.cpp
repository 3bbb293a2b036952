#include "App/Support/FakeAccessibility.h"
#include "Capture/ScreenAnchor.h"
#include "Capture/TextMarkerReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace tavik {
namespace {

using test::FakeElement;
using testing::Contains;
using testing::Not;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

class TextMarkerReaderTest : public testing::Test {
protected:
    TextMarkerReaderTest() {
        web.has.role = AccessibleRole::webArea;
        page.has.focusedUIElement = &block;
    }

    /// Selects a stretch of the block, whose paragraph is the block itself.
    void select(std::u16string text, UTF16Range range) {
        block.has.wholeText = std::move(text);
        page.has.selectedMarkers = TextMarkerRange{block.ref(), range};
        page.has.paragraph = TextMarkerRange{block.ref(), {0, largest}};
    }

    std::optional<CaptureCandidate> read() { return fromTextMarkers(page.ref(), anchor); }

    std::optional<std::string> sentence() {
        const auto found = read();
        return found ? found->sentence : "nothing read";
    }

    test::FakeAccessibility tree;
    test::FakeWorkspace workspace;
    ScreenAnchor anchor{workspace};
    /// What is asked; the elements below are what it speaks of.
    FakeElement& page = tree.make("page");
    FakeElement& web = tree.make("web");
    FakeElement& section = tree.make("section", web);
    FakeElement& block = tree.make("block", section);
};

TEST_F(TextMarkerReaderTest, theSentenceIsThatOfTheMarkerNotOfAnEarlierOccurrence) {
    select(u"A cat ran. Then the cat sat. A cat hid.", {20, 3});
    page.has.markerBounds = {{10, 80, 30, 20}};
    const auto found = read();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->text, u"cat");
    EXPECT_EQ(found->sentence, "Then the cat sat.");
    EXPECT_EQ(found->anchor, (ScreenRect{10, 980, 30, 20}));
    EXPECT_EQ(found->method, CaptureMethod::axMarker);
    EXPECT_THAT(tree.talk.calls, Not(Contains("block.parent")));
    page.has.paragraph = TextMarkerRange{block.ref(), {11, 17}};
    EXPECT_EQ(sentence(), "Then the cat sat.") << "places count from the paragraph's start";
}

TEST_F(TextMarkerReaderTest, whiteSpaceAroundTheSelectionMovesTheMarkerToTheKey) {
    select(u"A cat ran. \n\n  The cat sat. A cat hid.", {10, 14});
    EXPECT_EQ(read()->text, u" \n\n  The cat s");
    EXPECT_THAT(tree.talk.calls, Contains("page.paragraph(15)"));
    select(u"A big\n cat ran  off. Done.", {2, 8});
    EXPECT_EQ(read()->text, u"big\n cat");
    EXPECT_EQ(sentence(), "A big cat ran off.") << "compared and shown with single spaces";
}

TEST_F(TextMarkerReaderTest, aParagraphThatIsLittleMoreThanTheKeyIsRefused) {
    section.has.wholeText = u"We met a Cat. It hid.";
    select(u"(Cat).", {1, 3});
    EXPECT_EQ(sentence(), "We met a Cat.") << "three characters more";
    select(u"“(Cat)”", {2, 3});
    EXPECT_EQ(sentence(), "“(Cat)”") << "four";
    // A family is one character.
    select(u"Cat \U0001F468\u200D\U0001F469\u200D\U0001F467!", {0, 3});
    EXPECT_EQ(sentence(), "We met a Cat.");
}

TEST_F(TextMarkerReaderTest, aSelectionOfSeveralSentencesIsLookedForAround) {
    section.has.wholeText = u"Yes. But a cat ran. It hid.";
    select(u"A very old cat ran. It hid.", {11, 12});
    EXPECT_EQ(sentence(), "But a cat ran.")
        << "by the section, in which the selection stands as a whole";
    EXPECT_THAT(tree.talk.calls, Contains("page.markersOf(section)"));
}

TEST_F(TextMarkerReaderTest, enclosingTextsAreTriedTillOneHasMoreThanTheKey) {
    select(u"cat", {0, 3});
    FakeElement& outer = tree.make("outer", web);
    web.has.children.clear();
    section.has.parent = &outer;
    outer.has.wholeText = u"The cat sat. A cat ran.";
    for (const std::optional<std::u16string>& between :
         {std::optional<std::u16string>(), std::optional<std::u16string>(u"a cat!")}) {
        section.has.wholeText = between;
        EXPECT_EQ(sentence(), "The cat sat.");
    }
    section.has.wholeText = u"Concatenated scats. Now a cat.";
    EXPECT_EQ(sentence(), "Now a cat.") << "the word, not a part of another";
    section.has.wholeText = u"A CAT, letter by letter.";
    EXPECT_EQ(sentence(), "cat") << "the paragraph, as the climb ends where the key is missing";
    section.has.wholeText.reset();
    section.has.role = AccessibleRole::webArea;
    EXPECT_EQ(sentence(), "cat") << "the climb ends at the page";
    section.has.role = AccessibleRole::other;
    section.has.parent = nullptr;
    EXPECT_EQ(sentence(), "cat") << "and at the top";
}

TEST_F(TextMarkerReaderTest, theClimbTakesSixLevels) {
    FakeElement& top = tree.make("top");
    top.has.wholeText = u"The cat sat. A cat ran.";
    block.has.parent = &tree.makeChain(top, 5);
    select(u"cat", {0, 3});
    EXPECT_EQ(sentence(), "The cat sat.");
    block.has.parent = &tree.makeChain(top, 6);
    EXPECT_EQ(sentence(), "cat");
    block.has.parent = &block;
    EXPECT_EQ(sentence(), "cat");
}

TEST_F(TextMarkerReaderTest, aParagraphOfAnotherElementIsTheLastToBeSearched) {
    FakeElement& other = tree.make("other");
    other.has.wholeText = u"The first cat. The second cat.";
    select(u"cat", {0, 3});
    page.has.paragraph = TextMarkerRange{other.ref(), {0, largest}};
    EXPECT_EQ(sentence(), "The first cat.");
    section.has.wholeText = u"A cat in the section.";
    EXPECT_EQ(sentence(), "A cat in the section.");
    section.has.wholeText.reset();
    other.has.wholeText = u"Only dogs.";
    EXPECT_EQ(sentence(), std::nullopt);
    page.has.paragraph.reset();
    EXPECT_EQ(sentence(), std::nullopt);
}

TEST_F(TextMarkerReaderTest, longSentencesAreCutAroundTheKey) {
    const std::u16string filler(3000, u'x');
    select(filler + u" cat " + filler, {3001, 3});
    const auto found = sentence();
    ASSERT_TRUE(found);
    EXPECT_LT(found->size(), 420U);
    EXPECT_THAT(*found, testing::HasSubstr(" cat "));
}

TEST_F(TextMarkerReaderTest, rangesWithoutSenseHaveNoSentenceAtTheirPlace) {
    section.has.wholeText = u"A cat in the section.";
    const TextMarkerRange sane{block.ref(), {2, 3}};
    for (const std::int64_t location : {smallest, std::int64_t{-1}, std::int64_t{3}, largest}) {
        select(u"A cat sat. A dog.", {2, 3});
        page.has.paragraph->range.location = location;
        EXPECT_EQ(sentence(), "A cat in the section.") << location;
    }
    for (const UTF16Range range :
         {UTF16Range{smallest, largest}, UTF16Range{largest, largest}, UTF16Range{-1, 5}}) {
        select(u" cat", range);
        EXPECT_NE(sentence(), "cat") << range.location;
    }
    select(u" cat sat here", {0, 4});
    page.has.selectedMarkers->element = nullptr;
    EXPECT_EQ(read(), std::nullopt);
    EXPECT_EQ(markerSentence(page.ref(), {nullptr, 0}, u"cat"), "cat sat here");
    EXPECT_EQ(markerSentence(page.ref(), {block.ref(), smallest}, u"cat"), "A cat in the section.");
    EXPECT_EQ(markerSentence(page.ref(), {block.ref(), largest}, u"cat"), "A cat in the section.");
}

TEST_F(TextMarkerReaderTest, loneSurrogatesDoNoHarm) {
    const std::u16string lone{u'\xDC00'};
    select(lone + u" cat " + std::u16string{u'\xD83D'} + u" sat.", {2, 3});
    EXPECT_EQ(sentence(), "\uFFFD cat \uFFFD sat.");
    // A key that begins within a character.
    select(u"The \U0001F600 cat sat.", {5, 5});
    EXPECT_NO_THROW(static_cast<void>(read()));
}

} // namespace
} // namespace tavik
