// Scenarios as texts: their words, what is refused before they run, and which calls they are about.
#include "simulator/scenario.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "core/unicode.h"
#include "simulator/program.h"
#include "simulator/link_script.h"
#include "simulator/words.h"
#include "tests/shared/temporary_folder.h"

namespace vex::sim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

/// The first complaint about a scenario; empty: none.
std::string complaint(const std::string& text, const std::filesystem::path& folder = {}) {
    try {
        parse_scenario("a.scn", text, folder);
    } catch (const TextError& error) {
        return error.what();
    }
    return {};
}

TEST(Scenario, RefusesWhatIsNoStatement) {
    const struct {
        const char* text;
        const char* message;
    } cases[] = {
        {"# fine\n\ndisplay A\nclik cmdNext\n", "a.scn:4: \"clik\" is no statement"},
        {"display", "a.scn:1: expected display NAME"},
        {"units now", "a.scn:1: expected units"},
        {"display A porch=COM1", "a.scn:1: porch=COM1 is no KEY=VALUE"},
        {"display A connection=x", "a.scn:1: connection=x needs a number"},
        {"displays 0 Gate", "a.scn:1: \"0\" is no number from 1"},
        {"unit A 1 slaves=2", "a.scn:1: \"2\" is no grid"},
        {"unit A one slaves=1x1", "a.scn:1: \"one\" is no display ID"},
        {"unit A 1 grid=1x1", "a.scn:1: \"grid=1x1\" is neither slaves=YxX nor absent"},
        {"registry HKXX\\a b sz c", "a.scn:1: \"HKXX\\a\" is no ROOT\\KEY"},
        {"registry HKLM b sz c", "a.scn:1: \"HKLM\" is no ROOT\\KEY"},
        {"file C:\\a secret", "a.scn:1: \"secret\" is neither hidden nor folder"},
        {"fault A 1 Reset fail", "a.scn:1: \"Reset\" is none of OpenConnection"},
        {"fault A 1 ResetAndClear break", "a.scn:1: \"break\" is none of fail, raise, replace"},
        {"fault A 1 ResetAndClear fail at=0", "a.scn:1: \"0\" is no number from 1"},
        {"fault A 1 ResetAndClear fail once", "a.scn:1: \"once\" is not at=N"},
        {"fault A 1 SignID fail", "a.scn:1: \"fail\" is nothing that SignID does"},
        {"fault A * FindBoxes fail", "a.scn:1: \"fail\" is nothing that FindBoxes does"},
        {"fault A 1 ResetAndClear replace", "a.scn:1: \"replace\" is nothing that ResetAndClear does"},
        {"say A * FindBoxes x", "a.scn:1: \"FindBoxes\" is no member of the transmission control"},
        {"loader C:\\a both", "a.scn:1: \"both\" is neither line nor server"},
        {"display A\n# \xC3\xA4 \xE4 \n", "a.scn:2: byte 6 of the line is no UTF-8"},
        {"say A 1 ResetAndClear", "a.scn:1: expected say NAME"},
        {"say A 1 ResetAndClear x cmdCancel y", "a.scn:1: \"y\" is not at=N"},
        {"during A 1 ResetAndClear x clik cmdCancel", "a.scn:1: \"clik\" is no statement"},
        {"during A 1 ResetAndClear x during A 1 ResetAndClear y close", "a.scn:1: \"during\" is no statement for"},
        {"answer phone yes", "a.scn:1: \"phone\" is none of picker, openfile, msgbox"},
        {"answer msgbox maybe", "a.scn:1: \"maybe\" is none of yes, no, ok"},
        {"start window", "a.scn:1: \"window\" is not frame"},
        {"press picNavTree 1 2.5x", "a.scn:1: \"2.5x\" is no number of twips"},
        {"press picNavTree 1 2 middle", "a.scn:1: \"middle\" is neither left nor right"},
        {"retry 0", "a.scn:1: \"0\" is no number from 1"},
        {"show cmdNext", "a.scn:1: \"cmdNext\" is no CONTROL.PROPERTY"},
        {"show .Caption", "a.scn:1: \".Caption\" is no CONTROL.PROPERTY"},
        {"expect cmdNext.Enabled", "a.scn:1: expected expect CONTROL.PROPERTY"},
        {"say \"A 1 ResetAndClear x", "a.scn:1: a quote is not closed"},
        {"include", "a.scn:1: expected include FILE"},
    };
    for (const auto& bad : cases) EXPECT_THAT(complaint(bad.text), StartsWith(bad.message)) << bad.text;
}

TEST(Scenario, NamesThePlaceInAnIncludedFile) {
    const test::TemporaryFolder folder;
    const std::string file = folder.write("b.scn", "display A\n").string();
    EXPECT_EQ(complaint("include b.scn", folder.path()), "");
    EXPECT_EQ(complaint("\ninclude c.scn", folder.path()), "a.scn:2: " + (folder / "c.scn").string() + ": does not exist");
    folder.write("b.scn", "display A\nunits 1");
    EXPECT_THAT(complaint("\ninclude b.scn", folder.path()), StartsWith(file + ":2: expected units"));
    folder.write("b.scn", "include b.scn");
    EXPECT_EQ(complaint("include b.scn", folder.path()), file + ":1: files include each other too deeply");
}

TEST(Scenario, KnowsWhichControlAStatementIsAbout) {
    const Scenario scenario = parse_scenario("a",
                                             "show cmdNext.Enabled\nshow HKLM\\Software\\a.b c\nclick cmdNext\nunits\n"
                                             "expect lstv.Row1.ForeColor 0");
    ASSERT_EQ(scenario.statements.size(), 5U);
    EXPECT_EQ(scenario.statements[0].control, u"cmdNext");
    EXPECT_EQ(scenario.statements[1].control, u"");
    EXPECT_EQ(scenario.statements[2].control, u"cmdNext");
    EXPECT_EQ(scenario.statements[3].control, u"");
    EXPECT_EQ(scenario.statements[4].control, u"lstv");
}

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

TEST(CommandLine, RefusesTheRest) {
    const std::vector<std::string> lines[] = {
        {"run"}, {"a.scn"}, {"run", "a.scn", "b.scn"}, {"--data"}, {"--compare"}, {"run", "a.scn", "--data", ""},
        {"run", "a.scn", "--loud"}, {"run", "run", "a"}, {"controls", "run", "a"}, {""}};
    for (const std::vector<std::string>& words : lines) {
        EXPECT_THROW(command_line(words), std::invalid_argument);
    }
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

TEST(LinkScript, KeepsTheOrderOfMessagesAndTheFirstFault) {
    LinkScript script;
    script.add_message({u"A", 1, Operation::ResetAndClear}, {u"one", {}, false});
    script.add_message({{}, {}, Operation::ResetAndClear}, {u"two", {}, false});
    script.add_fault({u"A", 1, Operation::ResetAndClear}, FaultKind::raise);
    script.add_fault({u"A", 1, Operation::ResetAndClear, 1}, FaultKind::fail);
    const ScriptedCall call = script.next(kReset);
    ASSERT_EQ(call.messages.size(), 2U);
    EXPECT_EQ(call.messages[0].text, u"one");
    EXPECT_EQ(call.messages[1].text, u"two");
    EXPECT_EQ(call.fault, FaultKind::raise);
}

TEST(LinkScript, KnowsTheMembersByName) {
    for (const auto operation : {Operation::OpenConnection, Operation::SignID, Operation::CancelTransmission}) {
        EXPECT_EQ(parse_operation(name_of(operation)), operation);
    }
    EXPECT_THROW(parse_operation(u"resetandclear"), std::invalid_argument);
}

}  // namespace
}  // namespace vex::sim
