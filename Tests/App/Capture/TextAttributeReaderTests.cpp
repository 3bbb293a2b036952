#include "App/Support/FakeAccessibility.h"
#include "Capture/ScreenAnchor.h"
#include "Capture/SelectedText.h"
#include "Capture/TextAttributeReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <limits>

namespace tavik {
namespace {

using test::FakeElement;
using testing::Contains;
using testing::Not;
using testing::StartsWith;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

class TextAttributeReaderTest : public testing::Test {
protected:
    std::optional<CaptureCandidate> read() { return fromTextAttributes(field.ref(), anchor); }

    std::optional<std::string> sentence() {
        const auto found = read();
        return found ? found->sentence : "nothing read";
    }

    /// The range that was asked for when "cat" at `location` was read from a text that cannot be
    /// read whole.
    std::string windowAt(std::int64_t location) {
        field.has.selectedTextRange = {{location, 3}};
        tree.talk.calls.clear();
        static_cast<void>(read());
        for (const std::string& call : tree.talk.calls)
            if (call.starts_with("field.string")) return call;
        return "none";
    }

    test::FakeAccessibility tree;
    test::FakeWorkspace workspace;
    ScreenAnchor anchor{workspace};
    FakeElement& field = tree.make("field");
};

TEST_F(TextAttributeReaderTest, theRangeTellsWhichOccurrenceIsMeant) {
    field.has.selectedText = u" cat ";
    field.has.selectedTextRange = {{23, 5}};
    field.has.value = u"A cat ran. It hid. The  cat  sat. A cat hid.";
    field.has.bounds = {{10, 80, 0, 20}};
    const auto found = read();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->text, u" cat ");
    EXPECT_EQ(found->sentence, "The  cat  sat.");
    EXPECT_EQ(found->anchor, (ScreenRect{10, 980, 0, 20}));
    EXPECT_EQ(found->method, CaptureMethod::axText);
    EXPECT_THAT(tree.talk.calls, Not(Contains("field.count")));
}

TEST_F(TextAttributeReaderTest, aTextThatIsTooLongIsReadAroundTheSelection) {
    field.has.selectedText = u"cat";
    EXPECT_EQ(windowAt(0), "field.string(0+303)");
    EXPECT_EQ(windowAt(300), "field.string(0+603)");
    EXPECT_EQ(windowAt(301), "field.string(1+603)");
    EXPECT_EQ(windowAt(1000), "field.string(700+603)");
    field.has.numberOfCharacters = 1100;
    EXPECT_EQ(windowAt(1000), "field.string(700+400)");
    EXPECT_EQ(windowAt(1401), "none") << "the window lies behind the end";
    field.has.numberOfCharacters = -5;
    EXPECT_EQ(windowAt(0), "none");
    field.has.numberOfCharacters.reset();
    const std::u16string filler(500, u'x');
    field.has.longText = filler + u". A cat ran. The cat sat. X" + filler;
    field.has.selectedTextRange = {{517, 3}};
    EXPECT_EQ(sentence(), "The cat sat.");
}

TEST_F(TextAttributeReaderTest, rangesWithoutSenseFallBackToTheFirstOccurrence) {
    field.has.selectedText = u"cat\n";
    for (const UTF16Range range :
         {UTF16Range{}, UTF16Range{smallest, 3}, UTF16Range{-1, 4}, UTF16Range{2, -1},
          UTF16Range{largest - 1, largest}, UTF16Range{3, largest}, UTF16Range{1000, 3},
          UTF16Range{0, smallest}}) {
        SCOPED_TRACE(std::to_string(range.location) + '+' + std::to_string(range.length));
        field.has.selectedTextRange = range;
        field.has.value = u"Yes. The cat sat. A cat hid.";
        EXPECT_EQ(sentence(), "The cat sat.");
        field.has.value.reset();
        field.has.longText = u"Nothing here.";
        EXPECT_EQ(sentence(), std::nullopt);
    }
    field.has.value = u"The CAT sat. Then a cat.";
    field.has.selectedTextRange.reset();
    field.has.bounds = {{1, 1, 1, 1}};
    EXPECT_EQ(sentence(), "Then a cat.") << "letter for letter";
    EXPECT_EQ(read()->anchor, std::nullopt) << "nobody knows where";
}

TEST_F(TextAttributeReaderTest, theSearchGoesEightLevelsAndTwoHundredChildrenFar) {
    field.has.selectedText = u"cat";
    FakeElement& eighth = tree.makeChain(field, 8);
    FakeElement& ninth = tree.make("ninth", eighth);
    ninth.has.value = u"The ninth cat. More.";
    EXPECT_EQ(sentence(), std::nullopt);
    eighth.has.value = u"The eighth cat. More.";
    EXPECT_EQ(sentence(), "The eighth cat.");
    field.has.children.clear();
    for (int i = 0; i < 201; ++i)
        tree.make("child", field);
    field.has.children[200]->has.value = u"The last cat. More.";
    EXPECT_EQ(sentence(), std::nullopt);
    field.has.children[199]->has.value = u"Child cat. More.";
    EXPECT_EQ(sentence(), "Child cat.");
    FakeElement& inner = tree.make("inner", *field.has.children[0]);
    inner.has.value = u"Inner cat. More.";
    field.has.children[0]->has.value = u"no such thing";
    EXPECT_EQ(sentence(), "Inner cat.") << "before its parent's sibling";
    field.has.value = u"Own cat. More.";
    EXPECT_EQ(sentence(), "Own cat.");
}

TEST_F(TextAttributeReaderTest, aKeyWithinACharacterHasNoSentenceThereButElsewhere) {
    field.has.selectedText = std::u16string{u'\xDE00'};
    FakeElement& first = tree.make("first", field);
    first.has.value = u"Smile \U0001F600 now.";
    tree.make("past", first).has.value = u"No \xDE00 here.";
    tree.make("second", field).has.value = std::u16string(u"A lone ") + u'\xDE00' + u" one.";
    EXPECT_EQ(sentence(), "A lone \uFFFD one.");
    EXPECT_THAT(tree.talk.calls, Not(Contains(StartsWith("past."))));
}

TEST(SelectedText, isFoundInTimeAlsoWhereItIsMadeToTakeLong) {
    const std::u16string text(1'000'000, u'a');
    const std::u16string key = u"b" + std::u16string(500'000, u'a');
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(firstOccurrence(text, key), std::nullopt);
    EXPECT_EQ(firstOccurrence(text, std::u16string(500'000, u'a') + u"b"), std::nullopt);
    EXPECT_EQ(firstOccurrence(text + u"b", u"ab"), 999'999U);
    EXPECT_EQ(firstOccurrence(u"aabaabaaab ab", u"aabaaa"), 3U);
    EXPECT_EQ(firstOccurrence(u"abab", u"abc"), std::nullopt);
    EXPECT_EQ(firstOccurrence(u"", u"a"), std::nullopt);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

} // namespace
} // namespace tavik
