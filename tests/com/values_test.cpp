// Automation strings, automation values with their conversions, and classes that make objects.
#include <gmock/gmock.h>

#include <string>
#include <tuple>

#include "com/bstr.h"
#include "com/class_factory.h"
#include "com/object.h"
#include "com/variant.h"
#include "core/unicode.h"

namespace vex::com {
namespace {

/// How many objects are alive.
ModuleLifetime& test_module() {
    static ModuleLifetime instance;
    return instance;
}

class CountedObject final : public Object<CountedObject, Untyped<IDispatch>> {
public:
    CountedObject() noexcept : Object(test_module()) {}
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) noexcept override {
        return DISP_E_MEMBERNOTFOUND;
    }
};

TEST(IdentitiesAndConstants, AreThoseThatEverySystemKnows) {
    const std::pair<GUID, std::u16string> known[] = {
        {IID_NULL, u"{00000000-0000-0000-0000-000000000000}"},
        {IID_IUnknown, u"{00000000-0000-0000-C000-000000000046}"},
        {IID_IClassFactory, u"{00000001-0000-0000-C000-000000000046}"},
        {IID_IDispatch, u"{00020400-0000-0000-C000-000000000046}"},
        {IID_IErrorInfo, u"{1CF2B120-547D-101B-8E65-08002B2BD119}"},
        {IID_ICreateErrorInfo, u"{22F03340-547D-101B-8E65-08002B2BD119}"},
        {IID_ISupportErrorInfo, u"{DF0B3D60-548F-101B-8E65-08002B2BD119}"},
        {IID_IConnectionPointContainer, u"{B196B284-BAB4-101A-B69C-00AA00341D07}"},
        {IID_IConnectionPoint, u"{B196B286-BAB4-101A-B69C-00AA00341D07}"},
        {IID_IProvideClassInfo, u"{B196B283-BAB4-101A-B69C-00AA00341D07}"},
        {IID_IProvideClassInfo2, u"{A6BC3AC0-DBAA-11CE-9DE3-00AA004BB851}"},
        {IID_IPictureDisp, u"{7BF80981-BF32-101A-8BBB-00AA00300CAB}"},
    };
    for (const auto& [identity, text] : known) {
        OLECHAR written[39];
        EXPECT_EQ(StringFromGUID2(identity, written, 38), 0) << "no room";
        EXPECT_EQ(StringFromGUID2(identity, written, 39), 39);
        EXPECT_EQ(reinterpret_cast<const char16_t*>(written), text);
    }
    CLSID read;
    for (const std::u16string wrong :
         {u"{00020400-0000-0000-C000-000000000046}x", u"{00020400-0000-0000-C000-000000000046)"})
        EXPECT_EQ(CLSIDFromString(ole_text(wrong), &read), CO_E_CLASSSTRING);
    EXPECT_EQ(sizeof(VARIANT), 8 + 2 * sizeof(void*));
    const long constants[] = {
        VT_EMPTY, VT_NULL, VT_I2, VT_I4, VT_R8, VT_BSTR, VT_DISPATCH, VT_ERROR, VT_BOOL, VT_VARIANT, VT_UNKNOWN, VT_VOID,
        VT_HRESULT, VT_PTR, VT_USERDEFINED, VARIANT_TRUE, VARIANT_FALSE, S_FALSE, DISPID_UNKNOWN, DISPID_PROPERTYPUT,
        DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT, GUIDKIND_DEFAULT_SOURCE_DISP_IID,
        CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, COINIT_APARTMENTTHREADED};
    EXPECT_THAT(constants, testing::ElementsAre(0, 1, 2, 3, 5, 8, 9, 10, 11, 12, 13, 24, 25, 26, 29, -1, 0, 1, -1, -3, 1,
                                                2, 4, 1, 1, 1, 2));
}

TEST(AutomationString, KeepsEmbeddedNullsAndItsWholeLengthOrIsNone) {
    const std::u16string text(u"a\0b", 3);
    Bstr string{text};
    EXPECT_EQ(SysStringLen(string.get()), 3U);
    EXPECT_EQ(string.str(), text);
    EXPECT_EQ(string.get()[3], 0) << "a null must follow, for those who count on one";
    EXPECT_EQ(reinterpret_cast<const std::uint32_t*>(string.get())[-1], 6U) << "the length in bytes stands before";
    EXPECT_EQ(view(nullptr), u"");
    EXPECT_THROW(allocate_bstr({u"a", 0x7FFFFFFCU}), std::bad_alloc) << "more than memory holds";
    if constexpr (sizeof(std::size_t) > sizeof(UINT)) {
        const std::u16string_view too_long(u"a", static_cast<std::size_t>((std::uint64_t{1} << 32) + 1));
        EXPECT_THROW(allocate_bstr(too_long), std::bad_alloc) << "and no part of a text";
    }
    EXPECT_EQ(*string.put(), nullptr) << "what was held is freed";
}

TEST(AutomationValue, CopiesAndClearingKeepCount) {
    {
        const auto object = make_object<CountedObject>();
        Variant text = Variant::text(std::u16string(u"x\0y", 3));
        Variant reference = Variant::object(object.get());
        Variant copy = text;
        EXPECT_NE(copy.get().bstrVal, text.get().bstrVal);
        EXPECT_EQ(text.put()->vt, VT_EMPTY);
        EXPECT_EQ(view(copy.get().bstrVal), std::u16string(u"x\0y", 3));
        ASSERT_EQ(VariantCopy(&copy.get(), &reference.get()), S_OK);
        ASSERT_EQ(VariantCopy(&copy.get(), &copy.get()), S_OK);
        EXPECT_EQ(copy.get().pdispVal, object.get());
        Variant unknown;
        unknown.get().vt = VT_VOID;
        EXPECT_EQ(VariantCopy(&copy.get(), &unknown.get()), DISP_E_BADVARTYPE);
        EXPECT_EQ(VariantCopy(&unknown.get(), &reference.get()), DISP_E_BADVARTYPE);
    }
    EXPECT_TRUE(test_module().can_unload());
}

TEST(AutomationValue, ReferencesStayReferencesUntilTheyAreFollowed) {
    const Bstr text(u"mine");
    BSTR place = text.get();
    {
        const Variant reference = Variant::text_reference(&place);
        Variant copy = reference;
        EXPECT_EQ(copy.type(), VT_BYREF | VT_BSTR);
        EXPECT_EQ(copy.get().pbstrVal, &place);
        ASSERT_EQ(VariantCopyInd(&copy.get(), &copy.get()), S_OK) << "in place";
        EXPECT_EQ(view(copy.get().bstrVal), u"mine");
        EXPECT_NE(copy.get().bstrVal, place);
        Variant whole;
        whole.get().vt = VT_BYREF | VT_VARIANT;
        whole.get().pvarVal = &whole.get();
        EXPECT_EQ(VariantCopyInd(&copy.get(), &whole.get()), E_INVALIDARG) << "one step and no more";
    }
    EXPECT_EQ(view(place), u"mine") << "never freed";
}

/// The outcome of a conversion in a form that can be compared and read.
std::string converted(const Variant& from, VARTYPE type) {
    Variant to;
    const HRESULT result = VariantChangeType(&to.get(), &from.get(), 0, type);
    if (result == DISP_E_TYPEMISMATCH) return "mismatch";
    if (result == DISP_E_OVERFLOW) return "overflow";
    EXPECT_EQ(result, S_OK);
    EXPECT_EQ(to.type(), type);
    EXPECT_EQ(VariantChangeType(&to.get(), &to.get(), 0, VT_BSTR), S_OK);
    return to_utf8(view(to.get().bstrVal));
}

Variant operator""_text(const char16_t* text, std::size_t length) { return Variant::text({text, length}); }

TEST(Conversion, BetweenTextsNumbersAndBooleans) {
    const std::tuple<Variant, VARTYPE, const char*> cases[] = {
        {u" -32768 "_text, VT_I2, "-32768"}, {u"3.2767E+4"_text, VT_I2, "32767"}, {u"32768"_text, VT_I2, "overflow"},
        {u"1e400"_text, VT_BOOL, "overflow"}, {Variant::real(2147483648.0), VT_I4, "overflow"},
        // Halves go to the even neighbour.
        {u"3.5"_text, VT_I4, "4"}, {Variant::real(-2.5), VT_I4, "-2"}, {Variant::real(2.0 / 3), VT_BSTR, "0.666666666666667"},
        {Variant::real(-0.0), VT_BSTR, "0"}, {Variant::int32(0), VT_BOOL, "0"},
        {Variant::real(1e20), VT_BSTR, "1E+20"}, {Variant(), VT_BSTR, ""}, {Variant::boolean(true), VT_I4, "-1"},
        {Variant::int32(256), VT_BOOL, "-1"}, {u"TRUE"_text, VT_BOOL, "-1"}, {u"0.5"_text, VT_BOOL, "-1"},
        {u"yes"_text, VT_BOOL, "mismatch"}};
    for (const char16_t* text : {u"", u".", u"nan", u"1x", u"--1", u"1e"})
        EXPECT_EQ(converted(Variant::text(text), VT_I4), "mismatch") << to_utf8(text);
    for (const auto& [from, type, expected] : cases) EXPECT_EQ(converted(from, type), expected);
    Variant value;
    value.get().vt = VT_NULL;
    EXPECT_EQ(converted(value, VT_BSTR), "mismatch");
    Variant wrong = Variant::text(u"x");
    EXPECT_EQ(VariantChangeType(&wrong.get(), &wrong.get(), 0, VT_I2), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(view(wrong.get().bstrVal), u"x") << "a failure leaves the value";
}

// ---- Class objects and creation

constexpr CLSID kTestClass = {0x5B8D3A10, 0x2B1E, 0x4E0B, {0x9A, 0x1D, 0x0C, 0x1B, 0x7E, 0x52, 0x44, 0x01}};

TEST(ClassObjects, ServeUntilTheyAreRevoked) {
    ComPtr<IDispatch> object;
    const auto create = [&object] {
        return CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.put_void());
    };
    const auto offer = [] {
        return offer_class(test_module(), kTestClass, [] { return make_object<CountedObject>(); });
    };
    EXPECT_EQ(create(), CO_E_NOTINITIALIZED);
    EXPECT_THROW(offer(), RuntimeError);
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE);
    EXPECT_EQ(create(), REGDB_E_CLASSNOTREG);
    EXPECT_FALSE(object);
    const DWORD cookie = offer();
    EXPECT_EQ(create(), S_OK);
    UINT count = 7;
    auto* type = reinterpret_cast<ITypeInfo*>(&count);
    EXPECT_EQ(object->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &type), E_NOTIMPL);
    EXPECT_TRUE(count == 0 && type == nullptr);
    object.reset();
    EXPECT_TRUE(FAILED(CoRevokeClassObject(cookie + 1)));
    EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
    EXPECT_EQ(create(), REGDB_E_CLASSNOTREG);
    offer();
    CoUninitialize();
    EXPECT_EQ(create(), S_OK) << "one user is left";
    object.reset();
    CoUninitialize();
    EXPECT_EQ(create(), CO_E_NOTINITIALIZED);
    EXPECT_TRUE(test_module().can_unload()) << "something was not released";
}

}  // namespace
}  // namespace vex::com
