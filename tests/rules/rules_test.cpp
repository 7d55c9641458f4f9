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
#include "update/display_facts.h"
#include "tests/shared/error_of.h"
#include "wizard/mod_sign_type.h"

namespace vex {
namespace {

using test::error_of;

TEST(Rules, VersionNumbersReadOneCharacterBeforeTheLastPoint) {
    const struct {
        const char16_t* text;
        double number;
    } cases[] = {{u"1.41", 1.41},    {u"1.40", 1.40}, {u"V1.5", 1.5},        {u"V2.10", 2.1}, {u"12.00", 2},
                 {u"10.9", 0.9},     {u"", 0},        {u"version", 0},       {u"V.5", 0},     {u"1.2.30", 2.3},
                 {u"9.5beta7", 9.5}, {u"1.", 1},      {u"TQ1 1.41 r2", 1.41}};
    for (const auto& one : cases) EXPECT_DOUBLE_EQ(version_number(one.text), one.number);
    EXPECT_EQ(error_of([] { version_number(u".5"); }), kInvalidProcedureCall);
    EXPECT_TRUE(is_kqs_controller(u"kqS") && is_kqs_controller(u"KQSomething"));
    EXPECT_FALSE(is_kqs_controller(u"KQ") || is_kqs_controller(u" KQS"));
}

TEST(Rules, HostNumbersStandBehindTheLastPoint) {
    EXPECT_EQ(host_number(u"10.0.0.7"), 7);
    EXPECT_EQ(host_number(u"10.0.0."), 0);
    EXPECT_EQ(host_number(u"displays"), 0);
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
    for (std::int32_t code = INT16_MIN; code <= INT16_MAX; ++code) {
        EXPECT_EQ(IsTQ1SignType(static_cast<std::int16_t>(code)), code / 10 == 16) << code;
    }
}

TEST(Rules, LanBoxesAreToldByTheFirstWordOfThree) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"UDS before XPort", u"XPort"}, {u"MSS4 or UDS", u"UDS"}, {u"MSS", u"MSS"}, {u"xport uds mss", u"Unknown"}};
    for (const auto& [text, type] : cases) EXPECT_EQ(lan_box_type(text), type);
}

TEST(Rules, PathsEndBeforeTheirLastBackslash) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"C:\\fw\\new.bin", u"C:\\fw"}, {u"C:\\new.bin", u"C:"}, {u"C:\\fw\\", u"C:\\fw"},
        {u"fw/new.bin", u"fw/new.bin"},    {u"", u""},              {u"\\x", u""}};
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

const std::u16string kHugeNumber = u'1' + std::u16string(5000, u'0');

/// What a conversion of texts gives, or the error that all of `wrong` raise.
template <class Number, class Convert>
void expect(Convert convert, const std::vector<std::pair<std::u16string, Number>>& good,
            const std::vector<std::pair<ErrorNumber, std::vector<std::u16string>>>& wrong) {
    for (const auto& [text, number] : good) EXPECT_EQ(convert(text), number) << to_utf8(text);
    for (const auto& [error, texts] : wrong) {
        for (const std::u16string& text : texts) {
            EXPECT_EQ(error_of([&] { convert(text); }), error) << to_utf8(text);
        }
    }
}

TEST(AutomationValue, TextsBecome32BitNumbersRoundedToEven) {
    constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
    expect<std::int32_t>(
        [](const std::u16string& text) { return AutomationValue(text).to_int32(); },
        {{u"0", 0}, {u"-0", 0}, {u"  42\t", 42}, {u"+7", 7}, {u"007", 7}, {u"2147483647.4", 2147483647}, {u".9", 1},
         {u"0.05e1", 0}, {u"12e2", 1200}, {u"1200e-2", 12}, {u"1.25E1", 12}, {u"0.5", 0}, {u"1.5", 2}, {u"2.5", 2},
         {u"2.50001", 3}, {u"-1.5", -2}, {u"1e-9999999999", 0}, {u"0e999999999999", 0}, {u"-2147483648.5", kLowest}},
        {{kOverflow, {u"2147483648", u"2147483647.5", u"-2147483649", u"1e10", u"1e999999999999", kHugeNumber}},
         {kTypeMismatch, {u"", u" ", u".", u"-", u"1e", u"1 2", u"- 1", u"1.2.3", u"12x", u"nan", u"0x10", u"\xFF11",
                          std::u16string(u"1\0", 2)}}});
}

TEST(AutomationValue, TextsBecome16BitNumbersOnlyWhenWhole) {
    expect<int>([](const std::u16string& text) { return to_int16(text); },
                {{u"160", 160}, {u" -1 ", -1}, {u"32767", 32767}, {u"-32768", -32768}, {u"7.000", 7}, {u"0.0", 0},
                 {u"1.6e2", 160}, {u"1600e-1", 160}},
                {{kOverflow, {u"32768", u"-32769", u"99999", u"1e6", kHugeNumber}},
                 {kTypeMismatch, {u"1.5", u"32768.5", u"5e-1", u"", u"abc", u"1,5", u"160 -", u"--1", u"0x10"}}});
}

TEST(AutomationValue, LeadingNumbersStopAtTheFirstOtherCharacter) {
    const std::pair<std::u16string, double> cases[] = {
        {u"", 0},      {u"abc", 0},          {u".", 0},       {u"-1", 0},      {u" 1", 0},
        {u"192", 192}, {u"9600 baud", 9600}, {u"4.05", 4.05}, {u"3.2.1", 3.2}, {u".5x", 0.5},
        {u"7.", 7},    {u"1e3", 1},          {u"12,5", 12},   {u"0.0000", 0},  {u"\x0663", 0},
    };
    for (const auto& [text, number] : cases) EXPECT_DOUBLE_EQ(leading_number(text), number) << to_utf8(text);
    EXPECT_EQ(leading_number(kHugeNumber), std::numeric_limits<double>::infinity());
}

TEST(AutomationValue, OtherKindsConvertOrMismatch) {
    EXPECT_EQ(AutomationValue().to_text(), u"");
    EXPECT_EQ(AutomationValue().to_int32(), 0);
    EXPECT_EQ(AutomationValue(-2147483647 - 1).to_text(), u"-2147483648");
    EXPECT_EQ(AutomationValue(17).to_int32(), 17);
    const AutomationValue bytes(AutomationValue::Bytes{1, 2});
    EXPECT_THROW(bytes.to_text(), RuntimeError);
    EXPECT_THROW(bytes.to_int32(), RuntimeError);
    EXPECT_EQ(bytes.bytes(), (AutomationValue::Bytes{1, 2}));
    EXPECT_THROW(AutomationValue(u"text").bytes(), RuntimeError);
    EXPECT_NE(AutomationValue(u"1"), AutomationValue(1)) << "kinds are not mixed";
    EXPECT_NE(AutomationValue(u""), AutomationValue());
}

TEST(Narrowed, TakesWhatFitsAndRefusesTheRest) {
    EXPECT_EQ(narrowed<std::int16_t>(-32768), -32768);
    EXPECT_EQ(narrowed<std::uint32_t>(std::uint64_t{0xFFFFFFFF}), 0xFFFFFFFFU);
    EXPECT_THROW(narrowed<std::int16_t>(32768), RuntimeError);
    EXPECT_THROW(narrowed<std::uint32_t>(std::uint64_t{1} << 32), RuntimeError);
    EXPECT_THROW(narrowed<std::uint32_t>(-1), RuntimeError) << "a sign is not reinterpreted";
}

}  // namespace
}  // namespace vex
