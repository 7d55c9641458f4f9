// Values and their conversions, and the rules that turn texts into numbers.
#include "support/automation_value.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <variant>

#include "core/narrow.h"
#include "core/runtime_error.h"
#include "core/unicode.h"

namespace vex {
namespace {

/// What a conversion gives: a number, or the error that it raises.
template <class Number>
struct Case {
    std::u16string text;
    std::variant<Number, ErrorNumber> expected;
};

template <class Number>
void expect(const Case<Number>& each, const std::function<Number()>& convert) {
    SCOPED_TRACE('"' + to_utf8(each.text) + '"');
    try {
        const Number number = convert();
        ASSERT_EQ(each.expected.index(), 0U) << "no error was raised but the number " << number;
        EXPECT_EQ(number, std::get<0>(each.expected));
    } catch (const RuntimeError& error) {
        ASSERT_EQ(each.expected.index(), 1U) << error.what();
        EXPECT_EQ(error.number(), std::get<1>(each.expected));
    }
}

const std::u16string kHugeNumber = u'1' + std::u16string(5000, u'0');

TEST(AutomationValue, TextsBecome32BitNumbersRoundedToEven) {
    const Case<std::int32_t> cases[] = {
        {u"0", 0},
        {u"-0", 0},
        {u"  42\t", 42},
        {u"+7", 7},
        {u"007", 7},
        {u"2147483647", 2147483647},
        {u"-2147483648", std::numeric_limits<std::int32_t>::min()},
        {u"2147483647.4", 2147483647},
        {u"-2147483648.5", std::numeric_limits<std::int32_t>::min()},
        {u"0.5", 0},
        {u"1.5", 2},
        {u"2.5", 2},
        {u"2.50001", 3},
        {u"-1.5", -2},
        {u".9", 1},
        {u"0.05e1", 0},
        {u"12e2", 1200},
        {u"1200e-2", 12},
        {u"1.25E1", 12},
        {u"1e-999999999999", 0},
        {u"0e999999999999", 0},
        {u"2147483648", kOverflow},
        {u"2147483647.5", kOverflow},
        {u"-2147483649", kOverflow},
        {u"1e10", kOverflow},
        {u"1e999999999999", kOverflow},
        {kHugeNumber, kOverflow},
        {u"", kTypeMismatch},
        {u" ", kTypeMismatch},
        {u".", kTypeMismatch},
        {u"-", kTypeMismatch},
        {u"1e", kTypeMismatch},
        {u"1 2", kTypeMismatch},
        {u"- 1", kTypeMismatch},
        {u"1.2.3", kTypeMismatch},
        {u"12x", kTypeMismatch},
        {u"nan", kTypeMismatch},
        {u"0x10", kTypeMismatch},
        {u"\xFF11", kTypeMismatch},
        {std::u16string(u"1\0", 2), kTypeMismatch},
    };
    for (const auto& each : cases) expect<std::int32_t>(each, [&] { return AutomationValue(each.text).to_int32(); });
}

TEST(AutomationValue, TextsBecome16BitNumbersOnlyWhenWhole) {
    const Case<std::int16_t> cases[] = {
        {u"160", std::int16_t{160}},
        {u" -1 ", std::int16_t{-1}},
        {u"32767", std::int16_t{32767}},
        {u"-32768", std::int16_t{-32768}},
        {u"7.000", std::int16_t{7}},
        {u"0.0", std::int16_t{0}},
        {u"1.6e2", std::int16_t{160}},
        {u"1600e-1", std::int16_t{160}},
        {u"32768", kOverflow},
        {u"-32769", kOverflow},
        {u"99999", kOverflow},
        {u"1e6", kOverflow},
        {kHugeNumber, kOverflow},
        {u"1.5", kTypeMismatch},
        {u"32768.5", kTypeMismatch},
        {u"5e-1", kTypeMismatch},
        {u"", kTypeMismatch},
        {u"abc", kTypeMismatch},
        {u"1,5", kTypeMismatch},
        {u"160 -", kTypeMismatch},
    };
    for (const auto& each : cases) expect<std::int16_t>(each, [&] { return to_int16(each.text); });
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
