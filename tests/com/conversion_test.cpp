// Conversions between automation values.
#include <gtest/gtest.h>

#include <string>

#include "com/variant.h"
#include "core/unicode.h"
#include "tests/com/counted_object.h"

namespace vex::com {
namespace {

/// The outcome of a conversion in a form that can be compared and read.
std::string converted(const Variant& from, VARTYPE type, USHORT flags = 0) {
    Variant to;
    const HRESULT result = VariantChangeType(&to.get(), &from.get(), flags, type);
    if (result == DISP_E_TYPEMISMATCH) return "mismatch";
    if (result == DISP_E_OVERFLOW) return "overflow";
    if (FAILED(result)) return "failure " + std::to_string(result);
    EXPECT_EQ(to.type(), type);
    const VARIANT& value = to.get();
    switch (type) {
        case VT_I1: return std::to_string(value.cVal);
        case VT_UI1: return std::to_string(value.bVal);
        case VT_I2:
        case VT_BOOL: return std::to_string(value.iVal);
        case VT_UI2: return std::to_string(value.uiVal);
        case VT_I4: return std::to_string(value.lVal);
        case VT_UI4: return std::to_string(value.ulVal);
        case VT_I8: return std::to_string(value.llVal);
        case VT_UI8: return std::to_string(value.ullVal);
        case VT_R8: return std::to_string(value.dblVal);
        case VT_CY: return std::to_string(value.cyVal.int64);
        case VT_BSTR: return to_utf8(view(value.bstrVal));
        default: return "?";
    }
}

std::string number_of(const char16_t* text, VARTYPE type = VT_I4) { return converted(Variant::text(text), type); }

Variant null_value() {
    Variant value;
    value.get().vt = VT_NULL;
    return value;
}

Variant missing_argument() {
    Variant value;
    value.get().vt = VT_ERROR;
    value.get().scode = DISP_E_PARAMNOTFOUND;
    return value;
}

TEST(Conversion, TextsToNumbers) {
    EXPECT_EQ(number_of(u"42"), "42");
    EXPECT_EQ(number_of(u" -42 "), "-42");
    EXPECT_EQ(number_of(u"1,234"), "1234");
    EXPECT_EQ(number_of(u"2.5"), "2") << "halves go to the even neighbour";
    EXPECT_EQ(number_of(u"3.5"), "4");
    EXPECT_EQ(number_of(u"1e3"), "1000");
    EXPECT_EQ(number_of(u"&H1F"), "31");
    EXPECT_EQ(number_of(u"1.25", VT_R8), "1.250000");
    for (const char16_t* text : {u"", u" ", u"abc", u"1x", u"--1", u"1.2.3", u"1e"}) {
        EXPECT_EQ(number_of(text), "mismatch") << to_utf8(text);
    }
    EXPECT_EQ(number_of(u"32768", VT_I2), "overflow");
    EXPECT_EQ(number_of(u"2147483648"), "overflow");
    EXPECT_EQ(number_of(u"1e400", VT_R8), "overflow");
}

TEST(Conversion, NumbersToTexts) {
    EXPECT_EQ(converted(Variant::int32(-2147483647 - 1), VT_BSTR), "-2147483648");
    EXPECT_EQ(converted(Variant::real(0.1), VT_BSTR), "0.1");
    EXPECT_EQ(converted(Variant::real(-1.5), VT_BSTR), "-1.5");
    EXPECT_EQ(converted(Variant::real(1e20), VT_BSTR), "1E+20");
    EXPECT_EQ(converted(Variant::real(123456789012345.0), VT_BSTR), "123456789012345");
    EXPECT_EQ(converted(Variant(), VT_BSTR), "");
    Variant amount;
    amount.get().vt = VT_CY;
    amount.get().cyVal.int64 = -12500;
    EXPECT_EQ(converted(amount, VT_BSTR), "-1.25");
    EXPECT_EQ(converted(amount, VT_I2), "-1");
}

TEST(Conversion, NumbersToNarrowerNumbers) {
    EXPECT_EQ(converted(Variant::int32(40000), VT_I2), "overflow");
    EXPECT_EQ(converted(Variant::int32(40000), VT_UI2), "40000");
    EXPECT_EQ(converted(Variant::int16(-1), VT_UI1), "overflow");
    EXPECT_EQ(converted(Variant::int16(-129), VT_I1), "overflow");
    EXPECT_EQ(converted(Variant::real(0.5), VT_I4), "0");
    EXPECT_EQ(converted(Variant::real(1.5), VT_I4), "2");
    EXPECT_EQ(converted(Variant::real(-2.5), VT_I4), "-2");
    EXPECT_EQ(converted(Variant::real(2147483648.0), VT_I4), "overflow");
    EXPECT_EQ(converted(Variant::int16(3), VT_CY), "30000");
    EXPECT_EQ(converted(Variant(), VT_I4), "0");
}

TEST(Conversion, Booleans) {
    constexpr USHORT kWords = VARIANT_ALPHABOOL;
    EXPECT_EQ(converted(Variant::boolean(true), VT_BSTR), "-1");
    EXPECT_EQ(converted(Variant::boolean(true), VT_BSTR, kWords), "True");
    EXPECT_EQ(converted(Variant::boolean(false), VT_BSTR, kWords), "False");
    EXPECT_EQ(converted(Variant::boolean(true), VT_I4), "-1");
    EXPECT_EQ(converted(Variant::boolean(true), VT_UI1), "255");
    EXPECT_EQ(converted(Variant::int32(256), VT_BOOL), "-1");
    EXPECT_EQ(converted(Variant::text(u"TRUE"), VT_BOOL), "-1");
    EXPECT_EQ(converted(Variant::text(u"False"), VT_BOOL), "0");
    EXPECT_EQ(converted(Variant::text(u"0"), VT_BOOL), "0");
    EXPECT_EQ(converted(Variant::text(u"yes"), VT_BOOL), "mismatch");
}

TEST(Conversion, WhatHasNoValueConvertsToNothing) {
    for (const VARTYPE type : {VT_I2, VT_I4, VT_R8, VT_BSTR, VT_BOOL}) {
        EXPECT_EQ(converted(null_value(), type), "mismatch");
        EXPECT_EQ(converted(missing_argument(), type), "mismatch");
    }
    EXPECT_EQ(converted(Variant(), VT_DISPATCH), "mismatch");
    EXPECT_EQ(converted(Variant::int16(1), VT_UNKNOWN), "mismatch");
}

TEST(Conversion, FollowsReferencesAndWorksInPlace) {
    Bstr text(u"17");
    BSTR raw = text.get();
    EXPECT_EQ(converted(Variant::text_reference(&raw), VT_I2), "17");
    Variant value = Variant::text(u"17");
    ASSERT_EQ(VariantChangeType(&value.get(), &value.get(), 0, VT_I2), S_OK);
    EXPECT_EQ(value.get().iVal, 17);
    Variant wrong = Variant::text(u"x");
    EXPECT_EQ(VariantChangeType(&wrong.get(), &wrong.get(), 0, VT_I2), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(view(wrong.get().bstrVal), u"x") << "a failure leaves the value";
}

TEST(Conversion, ObjectsGiveTheirDefaultProperty) {
    {
        const auto object = make_object<CountedObject>(SHORT{12});
        EXPECT_EQ(converted(Variant::object(object.get()), VT_BSTR), "12");
        Variant as_unknown;
        const Variant source = Variant::object(object.get());
        ASSERT_EQ(VariantChangeType(&as_unknown.get(), &source.get(), 0, VT_UNKNOWN), S_OK);
        Variant back;
        ASSERT_EQ(VariantChangeType(&back.get(), &as_unknown.get(), 0, VT_DISPATCH), S_OK);
        EXPECT_EQ(back.get().pdispVal, object.get());
    }
    EXPECT_TRUE(test_module().can_unload());
}

}  // namespace
}  // namespace vex::com
