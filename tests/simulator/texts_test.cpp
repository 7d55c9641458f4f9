// The texts that the simulated host reads: words, command lines, scenarios, its files and firmware; and what of them is
// refused, and how.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/unicode.h"
#include "simulator/displays.h"
#include "simulator/firmware_image.h"
#include "simulator/program.h"
#include "simulator/scenario.h"
#include "simulator/words.h"
#include "tests/shared/temporary_folder.h"

namespace vex::sim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

const std::string kDisplays = "# Brivola displays, version 1\n";
const std::string kUnits = "# Brivola units, version 2\n";
constexpr char kData[] = "S1050000010FEA\n";
constexpr char kEnd[] = "S9030000FC\n";

void scenario(const std::string& text) { parse_scenario("a", text); }
void displays(const std::string& text) { Displays::parse("a", text); }
void units(const std::string& text) { Units::parse("a", text); }
void image(const std::string& text) { check_motorola_image(text, u"a"); }
void loader(const std::string& text) { check_loader_image(text, u"a"); }
CommandLine options(const std::string& text) {
    std::vector<std::string> words;
    for (const std::u16string& word : split_words(from_utf8(text))) words.push_back(to_utf8(word));
    return parse_command_line(words);
}
void command_line(const std::string& text) { options(text); }

/// The complaint; empty: there is none.
std::string complaint(void (*read)(const std::string& text), const std::string& text) {
    try {
        read(text);
    } catch (const std::exception& error) {
        return error.what();
    }
    return {};
}

TEST(Refusals, NameThePlaceAndTheFault) {
    const struct {
        void (*read)(const std::string& text);
        std::string text;
        const char* complaint;
    } cases[] = {
        {scenario, "# fine\n\ndisplay A\nclik cmdNext\n", "a:4: \"clik\" is no statement"},
        {scenario, "unit A 1 grid=1x1", "a:1: \"grid=1x1\" is not slaves=YxX"},
        {scenario, "display A\n# \xC3\xA4 \xE4 \n", "a:2: byte 6 of the line is no UTF-8"},
        {scenario, "say \"A 1 ResetAndClear x", "a:1: a quote is not closed"},
        {scenario, "include no.such", "a:1: no.such: does not exist"},
        {displays, kDisplays + "display A\ndisplay A\n", "a:3: display A stands here twice"},
        {units, "holds A 1 empty\n", "a:1: expected the line # Brivola"},
        {units, kUnits + "unit A 1 slaves=3\n", "a:2: \"3\" is no grid"},
        {image, kData, "a, line 1: terminator is missing"},
        {image, std::string(kData) + "S1050000010FEB\n" + kEnd, "a, line 2: checksum is EB, should be EA"},
        {loader, "abc\x80\x24\x80xyz", "a, byte 3: no flash loader"},
        {command_line, "run a.scn b.scn", "only --compare takes several scenarios"},
        {command_line, "--speed 0.01", "\"0.01\" is no speed"},
    };
    for (const auto& bad : cases) EXPECT_THAT(complaint(bad.read, bad.text), StartsWith(bad.complaint)) << bad.text;
    for (const bool kind : {false, true}) EXPECT_EQ(complaint(loader, make_loader_image(kind)), "");
    EXPECT_EQ(complaint(image, "S30700000000010fe8\nS5030001FB\n\nS70500000000FA\n"), "");
    for (const std::size_t size : {32U, 33U, 70'000U}) EXPECT_EQ(complaint(image, make_motorola_image(size)), "");
    EXPECT_EQ(describe_image("123456789", u"C:\\a"), u"a, 9 bytes, CRC-32 CBF43926");
}

TEST(Refusals, NameTheIncludedFile) {
    const test::TemporaryFolder folder;
    const std::string file = folder.write("b.scn", "display A\nunits 1").string();
    const std::string text = "\ninclude " + file;
    EXPECT_THAT(complaint(scenario, text), StartsWith(file + ":2: expected units"));
    folder.write("b.scn", "include " + file);
    EXPECT_EQ(complaint(scenario, text), file + ":1: files include each other too deeply");
}

TEST(CommandLine, TakesOptionsInAnyOrder) {
    const CommandLine line = options("--data d run --quiet a.scn --plugin p.so");
    EXPECT_THAT(line.scenarios, ElementsAre("a.scn"));
    EXPECT_EQ(line.data, "d");
    EXPECT_EQ(line.plugin, "p.so");
    EXPECT_TRUE(line.quiet);
}

// ---- Words

TEST(SplitWords, QuotesAndComments) {
    EXPECT_THAT(split_words(u" \t # only a comment"), IsEmpty());
    EXPECT_THAT(split_words(u"a#b \"#c\" #d"), ElementsAre(u"a#b", u"#c"));
    EXPECT_THAT(split_words(u"\"C:\\a b\\\" C:\\a"), ElementsAre(u"C:\\a b\\", u"C:\\a"));
    EXPECT_THAT(split_words(u"\"say \"\"no\"\"\" \"\" \"\"\"\""), ElementsAre(u"say \"no\"", u"", u"\""));
    // Quotes may begin in the middle of a word, as values do.
    EXPECT_THAT(split_words(u"type=\"a b\" phone=\"\" x\"y\"z"), ElementsAre(u"type=a b", u"phone=", u"xyz"));
}

}  // namespace
}  // namespace vex::sim
