// Scenarios as texts: the command line, words, and which calls a fault is about.
#include "simulator/words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/controls.h"
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

TEST(SplitLines, TakesEitherEndAndAByteOrderMark) {
    EXPECT_THAT(split_lines("a", "\xEF\xBB\xBFone\r\ntwo\n\nfour"), ElementsAre(u"one", u"two", u"", u"four"));
    EXPECT_THAT(split_lines("a", ""), IsEmpty());
}

// ---- Which calls a fault or a message is about

const Call kReset{u"A", 1, Operation::ResetAndClear};

TEST(LinkScript, MatchesDisplayUnitMemberAndCount) {
    LinkScript script;
    script.add_fault({u"A", 1, Operation::ResetAndClear, 2}, FaultKind::fail);
    script.add_fault({{}, {}, Operation::PrepareForFirmware}, FaultKind::raise);
    const std::pair<Call, FaultKind> calls[] = {{{u"B", 1, Operation::ResetAndClear}, FaultKind::none},
                                                {{u"A", 2, Operation::ResetAndClear}, FaultKind::none},
                                                {{u"A", 1, Operation::DownloadFirmware}, FaultKind::none},
                                                {kReset, FaultKind::none},
                                                {kReset, FaultKind::fail},
                                                {kReset, FaultKind::none},
                                                {{u"", -5, Operation::PrepareForFirmware}, FaultKind::raise},
                                                {{u"A", 1, Operation::PrepareForFirmware}, FaultKind::raise}};
    for (const auto& [call, fault] : calls) EXPECT_EQ(script.next(call).fault, fault);
}

}  // namespace
}  // namespace vex::sim
