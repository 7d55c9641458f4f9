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

Variant amount(std::int64_t ten_thousandths) {
    Variant value;
    value.get().vt = VT_CY;
    value.get().cyVal.int64 = ten_thousandths;
    return value;
}

Variant operator""_text(const char16_t* text, std::size_t length) { return Variant::text({text, length}); }

TEST(Conversion, BetweenTextsNumbersAndBooleans) {
    constexpr USHORT kWords = VARIANT_ALPHABOOL;
    const struct {
        Variant from;
        VARTYPE type;
        const char* expected;
        USHORT flags = 0;
    } cases[] = {// Halves go to the even neighbour.
                 {u"42"_text, VT_I4, "42"},
                 {u" -42 "_text, VT_I4, "-42"},
                 {u"1,234"_text, VT_I4, "1234"},
                 {u"2.5"_text, VT_I4, "2"},
                 {u"3.5"_text, VT_I4, "4"},
                 {u"1e3"_text, VT_I4, "1000"},
                 {u"&H1F"_text, VT_I4, "31"},
                 {u"1.25"_text, VT_R8, "1.250000"},
                 {u"32768"_text, VT_I2, "overflow"},
                 {u"2147483648"_text, VT_I4, "overflow"},
                 {u"1e400"_text, VT_R8, "overflow"},
                 {Variant::int32(-2147483647 - 1), VT_BSTR, "-2147483648"},
                 {Variant::real(0.1), VT_BSTR, "0.1"},
                 {Variant::real(-1.5), VT_BSTR, "-1.5"},
                 {Variant::real(1e20), VT_BSTR, "1E+20"},
                 {Variant::real(123456789012345.0), VT_BSTR, "123456789012345"},
                 {Variant(), VT_BSTR, ""},
                 {amount(-12500), VT_BSTR, "-1.25"},
                 {amount(-12500), VT_I2, "-1"},
                 {Variant::int32(40000), VT_I2, "overflow"},
                 {Variant::int32(40000), VT_UI2, "40000"},
                 {Variant::int16(-1), VT_UI1, "overflow"},
                 {Variant::int16(-129), VT_I1, "overflow"},
                 {Variant::real(0.5), VT_I4, "0"},
                 {Variant::real(1.5), VT_I4, "2"},
                 {Variant::real(-2.5), VT_I4, "-2"},
                 {Variant::real(2147483648.0), VT_I4, "overflow"},
                 {Variant::int16(3), VT_CY, "30000"},
                 {Variant(), VT_I4, "0"},
                 {Variant::boolean(true), VT_BSTR, "-1"},
                 {Variant::boolean(true), VT_BSTR, "True", kWords},
                 {Variant::boolean(false), VT_BSTR, "False", kWords},
                 {Variant::boolean(true), VT_I4, "-1"},
                 {Variant::boolean(true), VT_UI1, "255"},
                 {Variant::int32(256), VT_BOOL, "-1"},
                 {u"TRUE"_text, VT_BOOL, "-1"},
                 {u"False"_text, VT_BOOL, "0"},
                 {u"0"_text, VT_BOOL, "0"},
                 {u"yes"_text, VT_BOOL, "mismatch"}};
    for (const char16_t* text : {u"", u" ", u"abc", u"1x", u"--1", u"1.2.3", u"1e"}) {
        EXPECT_EQ(converted(Variant::text(text), VT_I4), "mismatch") << to_utf8(text);
    }
    for (const auto& one : cases) {
        EXPECT_EQ(converted(one.from, one.type, one.flags), one.expected) << "case " << &one - cases;
    }
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
