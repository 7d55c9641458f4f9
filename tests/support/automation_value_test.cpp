// Values and their conversions, and the rules that turn texts into numbers.
#include "support/automation_value.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "core/narrow.h"
#include "core/runtime_error.h"
#include "core/unicode.h"
#include "support/text.h"
#include "tests/shared/error_of.h"

namespace vex {
namespace {

const std::u16string kHugeNumber = u'1' + std::u16string(5000, u'0');

/// What a conversion of texts gives, or the error that all of `wrong` raise.
template <class Number, class Convert>
void expect(Convert convert, const std::vector<std::pair<std::u16string, Number>>& good,
            const std::vector<std::pair<ErrorNumber, std::vector<std::u16string>>>& wrong) {
    for (const auto& [text, number] : good) EXPECT_EQ(convert(text), number) << to_utf8(text);
    for (const auto& [error, texts] : wrong) {
        for (const std::u16string& text : texts) {
            EXPECT_EQ(test::error_of([&] { convert(text); }), error) << to_utf8(text);
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
