#include "Text/CharacterClasses.h"
#include "Text/LineWrap.h"
#include "Text/Unicode.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavik {
namespace {

using testing::ElementsAre;

TEST(Unicode, illFormedTextIsReadAndNeverFails) {
    EXPECT_EQ(utf8FromUTF16(std::u16string{u'a', 0xD83D, u'b'}), "a\uFFFDb");
    EXPECT_EQ(utf16FromUTF8("a\xF0\x9F"), u"a\uFFFD");
    EXPECT_FALSE(isValidUTF8("caf\xE9"));
    EXPECT_FALSE(isValidUTF8("\xED\xA0\x80"));
    EXPECT_TRUE(isValidUTF8("词🀄"));
}

TEST(Unicode, trimmingAndSplittingGoByScalar) {
    EXPECT_EQ(trimmed("\u3000\u0085 a b\u2028\n", isWhiteSpace), "a b");
    EXPECT_EQ(trimmed("\u3000\ta\n", isBlank), "a\n");
    EXPECT_EQ(trimmed("\u3000词\u3000", isWhiteSpace), "词");
    EXPECT_EQ(trimmed(" a\x85 ", isWhiteSpace), "a\x85");
    EXPECT_EQ(trimmed(" \u3000 ", isWhiteSpace), "");
    EXPECT_THAT(split("\na\u2029\r\nb\v", isNewline), ElementsAre("a", "b"));
}

TEST(Unicode, controlCharactersNeverReachATerminal) {
    EXPECT_EQ(printable("\x1b[31mred\x07\tend\u009b"), "\uFFFD[31mred\uFFFD\tend\uFFFD");
}

TEST(LineWrap, linesFitTheTerminalAndBreakWhereTheScriptAllows) {
    EXPECT_THAT(wrappedLines("one two three", 8), ElementsAre("one two", "three"));
    EXPECT_THAT(wrappedLines("中文每字两列。好", 6), ElementsAre("中文每", "字两", "列。好"));
    EXPECT_THAT(wrappedLines("unbreakable a", 4), ElementsAre("unbreakable", "a"));
    EXPECT_THAT(wrappedLines("", 4), ElementsAre());
}

} // namespace
} // namespace tavik
