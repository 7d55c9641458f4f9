// Texts in cells: widths, cutting, wrapping, mnemonics.
#include "platform/native/terminal/text.h"

#include <gmock/gmock.h>

namespace vex::platform::native::terminal {
namespace {

using testing::ElementsAre;

TEST(Text, CountsCellsNotCharacters) {
    EXPECT_EQ(text_width(U"Gate"), 4);
    EXPECT_EQ(text_width(U"日本"), 4);
    EXPECT_EQ(text_width(U"Cafe\u0301"), 4);
    EXPECT_EQ(text_width(U"a\tb"), 3);
    EXPECT_EQ(to_utf32(u"\xD83D\xDE80"), U"\U0001F680");
    EXPECT_EQ(text_width(U"\U0001F680"), 2);
    EXPECT_EQ(to_utf32(u"\xDE80x"), U"\uFFFDx");
}

TEST(Text, IsCutBetweenWholeCharacters) {
    EXPECT_EQ(beginning(U"日本語", 5), U"日本");
    EXPECT_EQ(shorten(U"Display Name", 12), U"Display Name");
    EXPECT_EQ(shorten(U"Display Name", 8), U"Display…");
    EXPECT_EQ(shorten(U"日本語", 5), U"日本…");
    EXPECT_EQ(shorten(U"日本語", 4), U"日…");
    EXPECT_EQ(shorten(U"ab", 0), U"");
    // A mark stays with its letter.
    EXPECT_EQ(beginning(U"e\u0301x", 1), U"e\u0301");
}

TEST(Text, WrapsAtBlanksAndLineEnds) {
    EXPECT_THAT(wrap(U"one two three", 7), ElementsAre(U"one two", U"three"));
    EXPECT_THAT(wrap(U"one two three", 6), ElementsAre(U"one", U"two", U"three"));
    EXPECT_THAT(wrap(U"abcdefgh ij", 4), ElementsAre(U"abcd", U"efgh", U"ij"));
    EXPECT_THAT(wrap(U"one\r\n\r\ntwo\n", 9), ElementsAre(U"one", U"", U"two", U""));
    EXPECT_THAT(wrap(U"trailing blank ", 80), ElementsAre(U"trailing blank"));
    EXPECT_THAT(wrap(U"", 5), ElementsAre(U""));
    // A width in which nothing fits still comes to an end.
    EXPECT_THAT(wrap(U"日本", 1), ElementsAre(U"日", U"本"));
}

TEST(Text, FindsTheMnemonic) {
    const Caption choose = parse_caption(u"Click Here to &Choose");
    EXPECT_EQ(choose.text, U"Click Here to Choose");
    EXPECT_EQ(choose.mnemonic, 14U);
    const Caption both = parse_caption(u"Reset && &Clear &");
    EXPECT_EQ(both.text, U"Reset & Clear &");
    EXPECT_EQ(both.mnemonic, 8U);
    EXPECT_FALSE(parse_caption(u"Close").mnemonic);
    EXPECT_TRUE(same_letter(U'c', U'C'));
    EXPECT_TRUE(same_letter(U'é', U'É'));
}

}  // namespace
}  // namespace vex::platform::native::terminal
