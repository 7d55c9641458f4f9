// How lines are split into words, and how words are written back.
#include "simulator/words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace vex::sim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

TEST(SplitWords, RefusesWhatCouldNotBeWrittenBack) {
    EXPECT_THROW(split_words(u"a \x1B[2J"), std::invalid_argument);
    EXPECT_THROW(split_words(u"\"a\rb\""), std::invalid_argument);
    EXPECT_THROW(split_words(std::u16string_view(u"a\0b", 3)), std::invalid_argument);
    EXPECT_THROW(split_words(u"a \"b"), std::invalid_argument);
    EXPECT_THROW(split_words(u"\"a\"\""), std::invalid_argument);
}

TEST(AsWord, IsReadBack) {
    for (const std::u16string text : {u"", u"plain", u"two words", u"\"", u"#no comment", u"a\"b", u"tab\there", u" ",
                                      u"C:\\Host\\", u"\u00C4\u20AC"}) {
        EXPECT_THAT(split_words(u"x " + as_word(text) + u" y"), ElementsAre(u"x", text, u"y"));
    }
    EXPECT_EQ(as_word(u"plain"), u"plain");
    EXPECT_EQ(in_quotes(u"line\r\nbreak"), u"\"line  break\"");
}

TEST(ParseNumber, TakesTheWholeWordAndTheRange) {
    EXPECT_EQ(parse_number(u"-32768", -32768, 32767), -32768);
    EXPECT_EQ(parse_number(u"007", 0, 10), 7);
    for (const std::u16string_view word :
         {u"", u"-", u"+1", u" 1", u"1 ", u"1x", u"0x1", u"32768", u"99999999999999999999"}) {
        EXPECT_EQ(parse_number(word, -32768, 32767), std::nullopt);
    }
}

TEST(SplitLines, TakesEitherEndAndAByteOrderMark) {
    EXPECT_THAT(split_lines("\xEF\xBB\xBFone\r\ntwo\n\nfour"), ElementsAre(u"one", u"two", u"", u"four"));
    EXPECT_THAT(split_lines(""), IsEmpty());
}

}  // namespace
}  // namespace vex::sim
