// Drawing on cells: texts, their widths and mnemonics.
#include "platform/native/terminal/canvas.h"

#include <gmock/gmock.h>

namespace vex::platform::native::terminal {
namespace {

using testing::ElementsAre;

TEST(Canvas, ShowsNoHalfOfAWideCharacterAndLetsNoTextSteerTheTerminal) {
    Canvas canvas({6, 1});
    canvas.text({0, 0}, U"日本語", {});
    canvas.text({1, 0}, U"x", {});   // over a right half
    canvas.text({5, 0}, U"日", {});  // at the edge
    EXPECT_EQ(text_picture(canvas), " x本\n");
    Canvas line({20, 1});
    line.text({0, 0}, U"a\x1B[2Jb\u009Bc\u202Ed\u200Be\n", {});
    EXPECT_EQ(text_picture(line), "a\uFFFD[2Jb\uFFFDcde\uFFFD\n");
    // Marks beyond those a cell keeps are dropped, and one without a letter is.
    line.fill(line.area(), look::kField);
    line.text({0, 0}, U"\u0301e\u0301\u0302\u0303\u0304x", {});
    EXPECT_EQ(text_picture(line), "e\u0301\u0302x\n");
}

TEST(Text, IsCutBetweenWholeCharacters) {
    EXPECT_EQ(text_width(U"Cafe\u0301 日本 \U0001F680\t"), 13);
    EXPECT_EQ(shorten(U"日本語", 4), U"日…");
    EXPECT_EQ(shorten(U"C:\\日本語", 6, Cut::start), U"…本語");
    EXPECT_EQ(beginning(U"e\u0301x", 1), U"e\u0301") << "a mark stays with its letter";
    EXPECT_THAT(wrap(U"one two three", 6), ElementsAre(U"one", U"two", U"three"));
    EXPECT_THAT(wrap(U"one\r\n\r\ntwo \n", 9), ElementsAre(U"one", U"", U"two", U""));
    EXPECT_THAT(wrap(U"日本", 1), ElementsAre(U"日", U"本")) << "also where nothing fits";
    const Caption both = parse_caption(u"Reset && &Clear &");
    EXPECT_EQ(both.text, U"Reset & Clear &");
    EXPECT_EQ(both.mnemonic, 8U);
}

}  // namespace
}  // namespace vex::platform::native::terminal
