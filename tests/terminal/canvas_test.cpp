// Drawing on cells: texts, their widths and mnemonics.
#include "platform/native/terminal/canvas.h"

#include <gmock/gmock.h>

#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {
namespace {

using testing::ElementsAre;

TEST(Canvas, NeverShowsHalfAWideCharacter) {
    Canvas canvas({6, 1});
    canvas.text({0, 0}, U"日本語", {});
    EXPECT_EQ(text_picture(canvas), "日本語\n");
    // Over the right half, over the left half, and at the edge.
    canvas.text({1, 0}, U"x", {});
    EXPECT_EQ(text_picture(canvas), " x本語\n");
    canvas.text({2, 0}, U"y", {});
    EXPECT_EQ(text_picture(canvas), " xy 語\n");
    canvas.text({5, 0}, U"日", {});
    EXPECT_EQ(text_picture(canvas), " xy\n");
    canvas.set_clip({0, 0, 3, 1});
    canvas.text({2, 0}, U"日", {});
    EXPECT_EQ(text_picture(canvas), " x\n");
}

TEST(Canvas, LetsNoTextSteerTheTerminal) {
    Canvas canvas({20, 1});
    canvas.text({0, 0}, U"a\x1B[2Jb\u009Bc\u202Ed\u200Be\n", {});
    EXPECT_EQ(text_picture(canvas), "a\uFFFD[2Jb\uFFFDcde\uFFFD\n");
    // Marks beyond those a cell keeps are dropped, and one without a letter is.
    canvas.fill(canvas.area(), look::kField);
    canvas.text({0, 0}, U"\u0301e\u0301\u0302\u0303\u0304x", {});
    EXPECT_EQ(text_picture(canvas), "e\u0301\u0302x\n");
}

TEST(Canvas, JoinsLinesThatMeet) {
    Canvas canvas({5, 3});
    canvas.line({0, 0}, {4, 0}, Color::black);
    canvas.line({2, 0}, {2, 2}, Color::black);
    canvas.line({2, 2}, {4, 2}, Color::black);
    EXPECT_EQ(text_picture(canvas), "──┬──\n  │\n  └──\n");
}

TEST(Text, IsCutBetweenWholeCharacters) {
    EXPECT_EQ(text_width(U"Cafe\u0301 日本 \U0001F680\t"), 13);
    EXPECT_EQ(to_utf32(u"\xD83D\xDE80 \xDE80x"), U"\U0001F680 \uFFFDx");
    EXPECT_EQ(shorten(U"Display Name", 12), U"Display Name");
    EXPECT_EQ(shorten(U"Display Name", 8), U"Display…");
    EXPECT_EQ(shorten(U"日本語", 4), U"日…");
    EXPECT_EQ(shorten(U"ab", 0), U"");
    EXPECT_EQ(shorten(U"Platform 10", 9, Cut::middle), U"Plat…m 10");
    EXPECT_EQ(shorten(U"C:\\日本語", 6, Cut::start), U"…本語");
    // A mark stays with its letter.
    EXPECT_EQ(beginning(U"e\u0301x", 1), U"e\u0301");
}

TEST(Text, WrapsAtBlanksAndLineEnds) {
    EXPECT_THAT(wrap(U"one two three", 6), ElementsAre(U"one", U"two", U"three"));
    EXPECT_THAT(wrap(U"abcdefgh ij", 4), ElementsAre(U"abcd", U"efgh", U"ij"));
    EXPECT_THAT(wrap(U"one\r\n\r\ntwo \n", 9), ElementsAre(U"one", U"", U"two", U""));
    // A width in which nothing fits still comes to an end.
    EXPECT_THAT(wrap(U"日本", 1), ElementsAre(U"日", U"本"));
}

TEST(Text, FindsTheMnemonic) {
    const Caption both = parse_caption(u"Reset && &Clear &");
    EXPECT_EQ(both.text, U"Reset & Clear &");
    EXPECT_EQ(both.mnemonic, 8U);
    EXPECT_FALSE(parse_caption(u"Close").mnemonic);
    EXPECT_TRUE(same_letter(U'é', U'É'));
}

}  // namespace
}  // namespace vex::platform::native::terminal
