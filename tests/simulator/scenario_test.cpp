// The command line, the words of scenarios and files, and the units behind a display.
#include "simulator/words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/displays.h"
#include "simulator/program.h"

namespace vex::sim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

CommandLine command_line(std::vector<std::string> words) { return parse_command_line(words); }

TEST(CommandLine, TakesOptionsInAnyOrder) {
    EXPECT_THAT(command_line({}).scenarios, IsEmpty());
    const CommandLine line = command_line({"--data", "d", "run", "--quiet", "a.scn", "--plugin", "p.so"});
    EXPECT_THAT(line.scenarios, ElementsAre("a.scn"));
    EXPECT_EQ(line.data, "d");
    EXPECT_EQ(line.plugin, "p.so");
    EXPECT_TRUE(line.quiet);
    EXPECT_THAT(command_line({"run", "-"}).scenarios, ElementsAre("-"));
    EXPECT_THAT(command_line({"run", "--compare", "a", "b"}).scenarios, ElementsAre("a", "b"));
    EXPECT_TRUE(command_line({"run", "--help"}).help);
}

// ---- Words

TEST(SplitWords, QuotesAndComments) {
    EXPECT_THAT(split_words(u""), IsEmpty());
    EXPECT_THAT(split_words(u" \t # only a comment"), IsEmpty());
    EXPECT_THAT(split_words(u"a  b\tc # d"), ElementsAre(u"a", u"b", u"c"));
    EXPECT_THAT(split_words(u"a#b \"#c\" #d"), ElementsAre(u"a#b", u"#c"));
    EXPECT_THAT(split_words(u"\"C:\\a b\\\" C:\\a"), ElementsAre(u"C:\\a b\\", u"C:\\a"));
    EXPECT_THAT(split_words(u"\"say \"\"no\"\"\" \"\" \"\"\"\""), ElementsAre(u"say \"no\"", u"", u"\""));
    // Quotes may begin in the middle of a word, as values do.
    EXPECT_THAT(split_words(u"type=\"a b\" phone=\"\" x\"y\"z"), ElementsAre(u"type=a b", u"phone=", u"xyz"));
}

TEST(AsWord, IsReadBack) {
    for (const std::u16string text : {u"", u"plain", u"two words", u"\"", u"#no comment", u"a\"b", u"tab\there", u" ",
                                      u"C:\\Host\\", u"\u00C4\u20AC"}) {
        EXPECT_THAT(split_words(u"x " + as_word(text) + u" y"), ElementsAre(u"x", text, u"y"));
    }
    EXPECT_EQ(as_word(u"plain"), u"plain");
    EXPECT_EQ(in_quotes(u"line\r\nbreak"), u"\"line  break\"");
}

// ---- The units behind a display

Display display_with(std::u16string ids) {
    Display display;
    display.name = u"A";
    display.ids = std::move(ids);
    return display;
}

TEST(Units, AreMastersTheirSlavesAndWhatWasPutThere) {
    Units units;
    const Display display = display_with(u"20, 1,x,,40000,1");
    EXPECT_THAT(units.ids(display), ElementsAre(20, 1));
    units.set_slaves(u"A", 1, {0, 2});
    units.set_slaves(u"A", 50, {0, 0});
    EXPECT_THAT(units.ids(display), ElementsAre(20, 1, 2, 3, 50));
    for (const int id : {1, 2, 3, 20, 50}) EXPECT_TRUE(units.answers(display, static_cast<std::int16_t>(id))) << id;
    for (const int id : {0, 4, 19, 21, -1}) EXPECT_FALSE(units.answers(display, static_cast<std::int16_t>(id))) << id;
    EXPECT_THAT(units.ids(display_with(u"")), ElementsAre(1, 50));
}

}  // namespace
}  // namespace vex::sim
