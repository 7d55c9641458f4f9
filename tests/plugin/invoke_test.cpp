// How late calls take arguments, and what they answer to wrong ones.
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {
namespace {

using com::Variant;
using Variants = std::vector<Variant>;
using Invoke = PluginTest;

/// A value of a type that has no factory; what it refers to stays the caller's.
template <class Place>
Variant value_of(int type, Place* place = nullptr) {
    Variant value;
    value.get().vt = static_cast<VARTYPE>(type);
    value.get().byref = place;
    return value;
}

Variant missing() {
    Variant value;
    value.get().vt = VT_ERROR;
    value.get().scode = DISP_E_PARAMNOTFOUND;
    return value;
}

Outcome get(DISPID member, const Variants& arguments, const std::vector<DISPID>& names = {}) {
    return call(*make(kCatalogueClass), member, DISPATCH_PROPERTYGET, arguments, names);
}
Outcome name_at(const Variants& arguments, const std::vector<DISPID>& names = {}) {
    return get(kPluginNames, arguments, names);
}
Outcome start_pre_transmit(const Variants& arguments) {
    return call(*make(kEntryClass), kStartPreTransmit, DISPATCH_METHOD, arguments);
}

TEST_F(Invoke, TakesArgumentsOfEveryTypeThatConverts) {
    SHORT short_zero = 0;
    LONG long_zero = 0;
    com::Bstr text(u"0");
    BSTR text_zero = text.get();
    VARIANT zero_value = Variant::int32(0).get();
    for (const Variant& zero :
         {Variant::int16(0), Variant::int32(0), Variant::real(0.4), Variant::boolean(false), Variant::text(u" 0 "),
          Variant(), value_of(VT_BYREF | VT_I2, &short_zero), value_of(VT_BYREF | VT_I4, &long_zero),
          value_of(VT_BYREF | VT_BSTR, &text_zero), value_of(VT_BYREF | VT_VARIANT, &zero_value)}) {
        EXPECT_EQ(name_at({zero}).value.type(), VT_BSTR) << zero.type();
    }
    EXPECT_EQ(name_at({Variant::boolean(true)}).code, error_code(9)) << "true is -1";
    EXPECT_EQ(name_at({Variant::int16(0)}, {0}).result, S_OK) << "by name";

    const auto object = make(kCatalogueClass);
    IDispatch* mine = object.get();
    IDispatch* none = nullptr;
    IUnknown* plain = mine;
    VARIANT object_value = value_of(VT_DISPATCH, mine).detach();
    for (const Variant& given : {Variant::object(mine), Variant::object(nullptr), Variant::object_reference(&mine),
                                 Variant::object_reference(&none), value_of(VT_BYREF | VT_VARIANT, &object_value),
                                 value_of(VT_BYREF | VT_UNKNOWN, &plain), value_of<IUnknown>(VT_UNKNOWN)}) {
        EXPECT_EQ(start_pre_transmit({given}).result, S_OK) << given.type();
    }
}

TEST_F(Invoke, TellsTheArgumentAtFault) {
    const auto expect_fault = [](const Outcome& outcome, HRESULT result) {
        EXPECT_EQ(outcome.result, result);
        EXPECT_EQ(outcome.argument, 0U);
    };
    VARIANT nothing = value_of<SHORT>(VT_BYREF | VT_I2).get();
    VARIANT left_out = missing().get(), number = Variant::int16(1).get();
    IDispatch* none = nullptr;
    const Variant null_value = value_of<void>(VT_NULL);
    for (const Variant& wrong : {Variant::text(u"first"), null_value, Variant::object_reference(&none),
                                 value_of<SHORT>(VT_BYREF | VT_I2), value_of<BSTR>(VT_BYREF | VT_BSTR),
                                 value_of<VARIANT>(VT_BYREF | VT_VARIANT), value_of(VT_BYREF | VT_VARIANT, &nothing)}) {
        SCOPED_TRACE(wrong.type());
        expect_fault(name_at({wrong}), DISP_E_TYPEMISMATCH);
    }
    for (const Variant& wrong : {Variant::int16(1), Variant::text(u"x"), Variant(), null_value,
                                 value_of<IDispatch*>(VT_BYREF | VT_DISPATCH), value_of(VT_BYREF | VT_VARIANT, &number)}) {
        SCOPED_TRACE(wrong.type());
        expect_fault(start_pre_transmit({wrong}), DISP_E_TYPEMISMATCH);
    }
    expect_fault(name_at({Variant::int32(DISP_E_PARAMNOTFOUND)}), DISP_E_OVERFLOW);
    expect_fault(name_at({missing()}), DISP_E_PARAMNOTOPTIONAL);
    expect_fault(name_at({value_of(VT_BYREF | VT_VARIANT, &left_out)}), DISP_E_PARAMNOTOPTIONAL);
    expect_fault(name_at({Variant::int16(0)}, {1}), DISP_E_PARAMNOTFOUND);
    expect_fault(name_at({Variant::int16(0)}, {DISPID_PROPERTYPUT}), DISP_E_PARAMNOTFOUND);
}

TEST_F(Invoke, CountsArguments) {
    const Variant zero = Variant::int16(0);
    for (const Outcome& outcome : {name_at({}), name_at({zero, zero}), name_at({zero, zero}, {0}),
                                   get(kTotalPlugins, {zero}), start_pre_transmit({})}) {
        EXPECT_EQ(outcome.result, DISP_E_BADPARAMCOUNT);
    }
    EXPECT_EQ(get(kTotalPlugins, {zero}, {0}).result, DISP_E_NONAMEDARGS);
    // The one parameter that may be left out, in either way; then the member runs, as far as it can here.
    for (const Variants& arguments : {Variants{}, {missing()}})
        EXPECT_EQ(call(*make(kEntryClass), kStartPlugin, DISPATCH_METHOD, arguments).code, error_code(429));
}

TEST_F(Invoke, RefusesCallsThatAreNone) {
    const auto catalogue = make(kCatalogueClass);
    VARIANTARG zero = Variant::int16(0).get();
    DISPID first = 0;
    DISPPARAMS more_names{&zero, &first, 1, 2}, no_names{&zero, nullptr, 1, 1}, no_values{nullptr, nullptr, 1, 0};
    for (DISPPARAMS* parameters : {&more_names, &no_names, &no_values, static_cast<DISPPARAMS*>(nullptr)}) {
        EXPECT_EQ(call(*catalogue, kPluginNames, DISPATCH_PROPERTYGET, parameters).result, E_INVALIDARG);
    }
    // Callers may have no use for answers.
    DISPPARAMS one_index{&zero, nullptr, 1, 0};
    const auto name = [&](REFIID reserved) {
        return catalogue->Invoke(kPluginNames, reserved, 0, DISPATCH_PROPERTYGET, &one_index, nullptr, nullptr,
                                 nullptr);
    };
    EXPECT_EQ(name(IID_NULL), S_OK);
    EXPECT_EQ(name(IID_IUnknown), DISP_E_UNKNOWNINTERFACE);
    zero.iVal = 5;
    EXPECT_EQ(name(IID_NULL), DISP_E_EXCEPTION);
    zero.vt = VT_NULL;
    EXPECT_EQ(name(IID_NULL), DISP_E_TYPEMISMATCH);
    for (const DISPID unknown : std::vector<DISPID>{0x68030005, 0x6802FFFF, 0, kDoesFrameEdit}) {
        EXPECT_EQ(call(*catalogue, unknown, DISPATCH_PROPERTYGET | DISPATCH_METHOD).result, DISP_E_MEMBERNOTFOUND);
    }
    EXPECT_EQ(call(*catalogue, kTotalPlugins, DISPATCH_PROPERTYPUT, {Variant::int16(2)}).result, DISP_E_MEMBERNOTFOUND);
}

TEST_F(Invoke, FindsNamesOfMembersAndTheirParameters) {
    const auto catalogue = make(kCatalogueClass);
    LPOLESTR names[] = {ole_name(u"pluginnames"), ole_name(u"IINDEX"), ole_name(u"iIndices"), nullptr};
    DISPID ids[4] = {7, 7, 7, 7};
    const auto find = [&](REFIID reserved, LPOLESTR* what, UINT count) {
        return catalogue->GetIDsOfNames(reserved, what, count, LOCALE_USER_DEFAULT, ids);
    };
    EXPECT_EQ(find(IID_NULL, names, 3), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(std::vector<DISPID>(ids, ids + 4), (std::vector<DISPID>{kPluginNames, 0, DISPID_UNKNOWN, 7}));
    EXPECT_EQ(find(IID_NULL, names, 2), S_OK);
    EXPECT_EQ(find(IID_IUnknown, names, 1), DISP_E_UNKNOWNINTERFACE);
    EXPECT_EQ(find(IID_NULL, names, 0), E_INVALIDARG);
    EXPECT_EQ(find(IID_NULL, nullptr, 1), E_INVALIDARG);
    EXPECT_EQ(find(IID_NULL, names + 3, 1), E_INVALIDARG);
    names[1] = nullptr;
    EXPECT_EQ(find(IID_NULL, names, 2), E_INVALIDARG);
    for (const char16_t* name : {u"StartPlugin", u"PluginName", u"PluginNamess", u""}) {
        LPOLESTR text = ole_name(name);
        EXPECT_EQ(find(IID_NULL, &text, 1), DISP_E_UNKNOWNNAME);
        EXPECT_EQ(ids[0], DISPID_UNKNOWN);
    }
}

}  // namespace
}  // namespace vex::plugin_test
