// Drawing on cells: texts, their widths and mnemonics, and colours that can be read.
#include "platform/native/terminal/canvas.h"

#include <gmock/gmock.h>

#include "platform/native/terminal/colors.h"
#include "platform/native/terminal/text.h"
#include "platform/native/terminal/text_picture.h"

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
    const ClipScope clip(canvas, {0, 0, 3, 1});
    canvas.text({2, 0}, U"日", {});
    EXPECT_EQ(text_picture(canvas), " x\n");
}

TEST(Canvas, LetsNoTextSteerTheTerminal) {
    Canvas canvas({20, 1});
    canvas.text({0, 0}, U"a\x1B[2Jb\u009Bc\u202Ed\u200Be\n", {});
    EXPECT_EQ(text_picture(canvas), "a\uFFFD[2Jb\uFFFDcde\uFFFD\n");
    // Marks beyond those a cell keeps are dropped, and one without a letter is.
    canvas.fill(canvas.area(), {});
    canvas.text({0, 0}, U"\u0301e\u0301\u0302\u0303\u0304x", {});
    EXPECT_EQ(text_picture(canvas), "e\u0301\u0302x\n");
}

TEST(Canvas, JoinsLinesThatMeet) {
    Canvas canvas({5, 3});
    canvas.line({0, 0}, {4, 0}, forms::kBlack);
    canvas.line({2, 0}, {2, 2}, forms::kBlack);
    canvas.line({2, 2}, {4, 2}, forms::kBlack);
    EXPECT_EQ(text_picture(canvas), "──┬──\n  │\n  └──\n");
    Canvas framed({4, 3});
    framed.frame(framed.area(), forms::kBlack);
    EXPECT_EQ(text_picture(framed), "┌──┐\n│  │\n└──┘\n");
}

TEST(Colors, KeepTheirHueAndCanBeRead) {
    // The light green of a finished display, on white.
    const forms::Color green = readable_on(forms::rgb(100, 255, 100), forms::kWhite);
    EXPECT_GE(contrast(green, forms::kWhite), 2.5);
    EXPECT_GT(green >> 8 & 0xFF, 2 * (green & 0xFF));
    EXPECT_EQ(readable_on(forms::kRed, forms::kWhite), forms::kRed);
    EXPECT_EQ(readable_on(forms::kWhite, forms::kDarkGrey), forms::kWhite);
    EXPECT_NE(readable_on(forms::kWhite, forms::kWhite), forms::kWhite);
    EXPECT_NE(readable_on(forms::kBlack, forms::kBlack), forms::kBlack);
}

TEST(Colors, FindTheirPlaceInEveryPalette) {
    EXPECT_EQ(nearest_palette_color(forms::kGreen, 256), 46);
    EXPECT_EQ(nearest_palette_color(forms::kGrey, 256), 244);
    EXPECT_EQ(nearest_palette_color(forms::kGrey, 16), 8);
    EXPECT_EQ(nearest_palette_color(forms::kGrey, 8), 7);
    EXPECT_EQ(nearest_palette_color(forms::kDarkGrey, 8), 0);
    EXPECT_EQ(nearest_palette_color(forms::kRed, 8), 1);
    // Greys that fall onto one colour of eight are still told apart.
    for (const int count : {8, 16, 256}) {
        for (const forms::Color back : {look::kFace, look::kField, look::kHeader, look::kDesktop}) {
            const int back_color = nearest_palette_color(back, count);
            EXPECT_NE(palette_text_color(look::kFaint, back_color, count), back_color) << count;
            EXPECT_NE(palette_text_color(back, back_color, count), back_color) << count;
        }
    }
}

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
