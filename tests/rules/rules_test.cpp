// The small rules at their edges: those of the wizard and the session, and how texts and values become numbers.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "core/narrow.h"
#include "core/unicode.h"
#include "support/automation_value.h"
#include "support/file_routines.h"
#include "support/text.h"
#include "tests/shared/error_of.h"
#include "update/display_facts.h"
#include "wizard/mod_sign_type.h"

namespace vex {
namespace {

using test::error_of;

TEST(Rules, VersionNumbersReadOneCharacterBeforeTheLastPoint) {
    const std::pair<const char16_t*, double> cases[] = {
        {u"TQ1 1.41 r2", 1.41}, {u"12.00", 2}, {u"1.2.30", 2.3}, {u"version", 0}};
    for (const auto& [text, number] : cases) EXPECT_DOUBLE_EQ(version_number(text), number);
    EXPECT_EQ(error_of([] { version_number(u".5"); }), kInvalidProcedureCall);
    EXPECT_TRUE(is_kqs_controller(u"kqS") && is_kqs_controller(u"KQSomething"));
    EXPECT_FALSE(is_kqs_controller(u"KQ") || is_kqs_controller(u" KQS"));
}

TEST(Rules, SplittingLosesNothing) {
    EXPECT_TRUE(split(u"", u',').empty());
    EXPECT_EQ(split(u",", u','), (std::vector<std::u16string>{u"", u""}));
    EXPECT_EQ(split(u" a,,b ", u','), (std::vector<std::u16string>{u" a", u"", u"b "}));
}

TEST(Rules, BoardFamiliesByTypeTextAndByCode) {
    EXPECT_TRUE(is_tq1_type_text(u"TQ-1 - Street") && is_tq1_type_text(u"tq-1 - "));
    for (const char16_t* text : {u"", u"TQ-1", u"TQ-1 -", u"TQ-1 -x", u" TQ-1 - ", u"TQ-1  - "})
        EXPECT_FALSE(is_tq1_type_text(text));
    EXPECT_TRUE(IsTQ1SignType(160) && IsTQ1SignType(169));
    EXPECT_FALSE(IsTQ1SignType(159) || IsTQ1SignType(170));
}

TEST(Rules, HostNumbersStandBehindTheLastPointAndLanBoxesAreToldByTheFirstWordOfThree) {
    EXPECT_EQ(host_number(u"10.0.0.7"), 7);
    EXPECT_EQ(host_number(u"displays"), 0);
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"UDS before XPort", u"XPort"}, {u"MSS4 or UDS", u"UDS"}, {u"MSS", u"MSS"}, {u"xport uds mss", u"Unknown"}};
    for (const auto& [text, type] : cases) EXPECT_EQ(lan_box_type(text), type);
}

TEST(Rules, PathsEndBeforeTheirLastBackslash) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"C:\\fw\\new.bin", u"C:\\fw"}, {u"C:\\fw\\", u"C:\\fw"}, {u"fw/new.bin", u"fw/new.bin"}, {u"\\x", u""}};
    for (const auto& [path, folder] : cases) EXPECT_EQ(GetPathOnly(path), folder);
    // The position of the last backslash, and the length of a path without one, count in 16 bits.
    const std::u16string longest(32767, u'a');
    EXPECT_EQ(GetPathOnly(longest), longest);
    EXPECT_EQ(GetPathOnly(u"C:\\" + longest + longest), u"C:") << "what follows the last backslash may be long";
    EXPECT_EQ(GetPathOnly(longest.substr(1) + u"\\x").size(), 32766U);
    for (const std::u16string& path : {longest + u'a', longest + u"\\x"}) {
        EXPECT_EQ(error_of([&] { GetPathOnly(path); }), kOverflow);
    }
}

TEST(AutomationValue, TextsBecome32BitNumbersRoundedToEven) {
    const std::pair<const char16_t*, std::int32_t> cases[] = {
        {u"0", 0}, {u"  42\t", 42}, {u"+7", 7}, {u"007", 7}, {u".9", 1}, {u"0.000000000012e12", 12}, {u"12e2", 1200},
        {u"1200e-2", 12}, {u"1.25E1", 12}, {u"-1.5", -2}, {u"2.50001", 3}, {u"1e-9999999999", 0},
        {u"0e999999999999", 0}, {u"2147483647.4", 2147483647},
        {u"-2147483648.5", std::numeric_limits<std::int32_t>::min()}};
    for (const auto& [text, number] : cases) EXPECT_EQ(to_int32(text), number) << to_utf8(text);
    for (const char16_t* text : {u"2147483647.5", u"-2147483649", u"1e99", u"1e999999999999"})
        EXPECT_EQ(error_of([&] { to_int32(text); }), kOverflow) << to_utf8(text);
    for (const char16_t* text : {u"", u".", u"1e", u"1e2.5", u"- 1", u"1 2", u"1.2.3", u"\xFF11"})
        EXPECT_EQ(error_of([&] { to_int32(text); }), kTypeMismatch) << to_utf8(text);
}

TEST(AutomationValue, TextsBecome16BitNumbersOnlyWhenWhole) {
    const std::pair<const char16_t*, std::int16_t> cases[] = {
        {u" -32768 ", INT16_MIN}, {u"7.000", 7}, {u"0.0", 0}, {u"1600e-1", 160}};
    for (const auto& [text, number] : cases) EXPECT_EQ(to_int16(text), number) << to_utf8(text);
    for (const char16_t* text : {u"32768", u"1e99"}) EXPECT_EQ(error_of([&] { to_int16(text); }), kOverflow);
    for (const char16_t* text : {u"1.5", u"32768.5", u"5e-3", u"160 -"})
        EXPECT_EQ(error_of([&] { to_int16(text); }), kTypeMismatch) << to_utf8(text);
}

TEST(AutomationValue, LeadingNumbersStopAtTheFirstOtherCharacter) {
    const std::pair<const char16_t*, double> cases[] = {{u"abc", 0},          {u".", 0},       {u"-1", 0},
                                                        {u"9600 baud", 9600}, {u"4.05", 4.05}, {u"3.2.1", 3.2},
                                                        {u".5x", 0.5},        {u"7.", 7},      {u"\x0663", 0},
                                                        {u"0.00000000000000000000009", 0}};
    for (const auto& [text, number] : cases) EXPECT_DOUBLE_EQ(leading_number(text), number) << to_utf8(text);
    EXPECT_EQ(leading_number(u'1' + std::u16string(5000, u'0')), std::numeric_limits<double>::infinity());
}

TEST(AutomationValue, OtherKindsConvertAndAreNotMixed) {
    EXPECT_EQ(AutomationValue().to_text(), u"");
    EXPECT_EQ(AutomationValue().to_int32(), 0);
    EXPECT_EQ(AutomationValue(-2147483647 - 1).to_text(), u"-2147483648");
    EXPECT_NE(AutomationValue(u"1"), AutomationValue(1));
}

TEST(Narrowed, TakesWhatFitsAndRefusesTheRest) {
    EXPECT_EQ(narrowed<std::uint32_t>(std::uint64_t{0xFFFFFFFF}), 0xFFFFFFFFU);
    EXPECT_THROW(narrowed<std::uint32_t>(std::uint64_t{1} << 32), RuntimeError);
    EXPECT_THROW(narrowed<std::uint32_t>(-1), RuntimeError) << "a sign is not reinterpreted";
}

}  // namespace
}  // namespace vex
