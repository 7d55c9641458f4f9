// How late calls take arguments, and what they answer to wrong ones.
#include <gtest/gtest.h>

#include "tests/plugin/late_call.h"
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {
namespace {

using com::Variant;

constexpr DISPID kTotalPlugins = 0x68030004;
constexpr DISPID kPluginNames = 0x68030003;
constexpr DISPID kDoesFrameEdit = 0x60030001;
constexpr DISPID kStartPreTransmit = 0x60030004;

Variant missing() {
    Variant value;
    value.get().vt = VT_ERROR;
    value.get().scode = DISP_E_PARAMNOTFOUND;
    return value;
}

Variant null_value() {
    Variant value;
    value.get().vt = VT_NULL;
    return value;
}

template <class Place>
Variant reference(VARTYPE type, Place* place) {
    Variant value;
    value.get().vt = static_cast<VARTYPE>(VT_BYREF | type);
    value.get().byref = place;
    return value;
}

class Invoke : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        catalogue_ = make(kCatalogueClass);
        entry_ = make(kEntryClass);
    }
    void TearDown() override {
        catalogue_.reset();
        entry_.reset();
        PluginTest::TearDown();
    }

    /// The first name by an index of any type.
    Outcome name_at(const Variant& index) { return call(*catalogue_, kPluginNames, DISPATCH_PROPERTYGET, {index}); }

    com::ComPtr<IDispatch> catalogue_;
    com::ComPtr<IDispatch> entry_;
};

TEST_F(Invoke, TakesAnIndexOfEveryTypeThatConverts) {
    SHORT short_zero = 0;
    LONG long_zero = 0;
    DOUBLE real_zero = 0.4;
    com::Bstr text(u"0");
    BSTR text_zero = text.get();
    VARIANT inner = Variant::int32(0).get();
    const std::vector<Variant> zeros = {
        Variant::int16(0),
        Variant::int32(0),
        Variant::real(0.4),
        Variant::boolean(false),
        Variant::text(u" 0 "),
        Variant(),
        reference(VT_I2, &short_zero),
        reference(VT_I4, &long_zero),
        reference(VT_R8, &real_zero),
        reference(VT_BSTR, &text_zero),
        reference(VT_VARIANT, &inner),
    };
    for (const Variant& zero : zeros) {
        const Outcome outcome = name_at(zero);
        EXPECT_EQ(outcome.result, S_OK) << zero.type();
        EXPECT_EQ(outcome.value.type(), VT_BSTR) << zero.type();
    }
    EXPECT_EQ(name_at(Variant::boolean(true)).code, error_code(9)) << "true is -1";
}

TEST_F(Invoke, TellsWhichArgumentIsOfTheWrongType) {
    for (const Variant& wrong : {Variant::text(u"first"), null_value(), Variant::object(nullptr)}) {
        const Outcome outcome = name_at(wrong);
        EXPECT_EQ(outcome.result, DISP_E_TYPEMISMATCH) << wrong.type();
        EXPECT_EQ(outcome.argument, 0U);
    }
    const Outcome outcome = name_at(Variant::int32(32768));
    EXPECT_EQ(outcome.result, DISP_E_OVERFLOW);
    EXPECT_EQ(outcome.argument, 0U);
}

TEST_F(Invoke, CountsArguments) {
    EXPECT_EQ(call(*catalogue_, kPluginNames, DISPATCH_PROPERTYGET).result, DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(call(*catalogue_, kPluginNames, DISPATCH_PROPERTYGET, {Variant::int16(0), Variant::int16(0)}).result,
              DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(call(*catalogue_, kTotalPlugins, DISPATCH_PROPERTYGET, {Variant::int16(0)}).result, DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(call(*entry_, kStartPreTransmit, DISPATCH_METHOD).result, DISP_E_BADPARAMCOUNT);
    const Outcome outcome = name_at(missing());
    EXPECT_EQ(outcome.result, DISP_E_PARAMNOTOPTIONAL);
    EXPECT_EQ(outcome.argument, 0U);
    VARIANT left_out = missing().get();
    EXPECT_EQ(name_at(reference(VT_VARIANT, &left_out)).result, DISP_E_PARAMNOTOPTIONAL) << "passed on by its caller";
}

TEST_F(Invoke, RefusesReferencesToNothing) {
    VARIANT inner = reference<SHORT>(VT_I2, nullptr).get();
    for (const Variant& nothing : {reference<SHORT>(VT_I2, nullptr), reference<BSTR>(VT_BSTR, nullptr),
                                   reference<VARIANT>(VT_VARIANT, nullptr), reference(VT_VARIANT, &inner)}) {
        const Outcome outcome = name_at(nothing);
        EXPECT_EQ(outcome.result, DISP_E_TYPEMISMATCH) << nothing.type();
        EXPECT_EQ(outcome.argument, 0U);
    }
    const Outcome outcome =
        call(*entry_, kStartPreTransmit, DISPATCH_METHOD, {reference<IDispatch*>(VT_DISPATCH, nullptr)});
    EXPECT_EQ(outcome.result, DISP_E_TYPEMISMATCH);
    EXPECT_EQ(outcome.argument, 0U);
}

TEST_F(Invoke, TakesNamedArguments) {
    const auto by_name = [this](DISPID position, const std::vector<Variant>& positional = {}) {
        return call(*catalogue_, kPluginNames, DISPATCH_PROPERTYGET, positional, {{position, Variant::int16(0)}});
    };
    EXPECT_EQ(by_name(0).result, S_OK);
    const Outcome unknown = by_name(1);
    EXPECT_EQ(unknown.result, DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(unknown.argument, 0U);
    EXPECT_TRUE(FAILED(by_name(DISPID_PROPERTYPUT).result));
    EXPECT_EQ(by_name(0, {Variant::int16(0)}).result, DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(call(*catalogue_, kTotalPlugins, DISPATCH_PROPERTYGET, {}, {{0, Variant::int16(0)}}).result,
              DISP_E_NONAMEDARGS)
        << "a member without parameters has no names for them";
}

TEST_F(Invoke, TakesObjectsByValueAndByReference) {
    IDispatch* mine = catalogue_.get();
    IDispatch* none = nullptr;
    IUnknown* plain = catalogue_.get();
    VARIANT inner{};
    inner.vt = VT_DISPATCH;
    inner.pdispVal = mine;
    Variant unknown;
    unknown.get().vt = VT_UNKNOWN;
    unknown.get().punkVal = plain;
    plain->AddRef();
    const std::vector<Variant> objects = {
        Variant::object(mine),
        Variant::object(nullptr),
        Variant::object_reference(&mine),
        Variant::object_reference(&none),
        reference(VT_VARIANT, &inner),
        unknown,
        reference(VT_UNKNOWN, &plain),
    };
    for (const Variant& object : objects) {
        EXPECT_EQ(call(*entry_, kStartPreTransmit, DISPATCH_METHOD, {object}).result, S_OK) << object.type();
    }
    for (const Variant& wrong : {Variant::int16(1), Variant::text(u"x"), Variant(), null_value()}) {
        const Outcome outcome = call(*entry_, kStartPreTransmit, DISPATCH_METHOD, {wrong});
        EXPECT_EQ(outcome.result, DISP_E_TYPEMISMATCH) << wrong.type();
        EXPECT_EQ(outcome.argument, 0U);
    }
}

TEST_F(Invoke, KnowsItsMembersAndTheirKinds) {
    EXPECT_EQ(call(*catalogue_, 0x68030005, DISPATCH_PROPERTYGET).result, DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(call(*catalogue_, DISPID_VALUE, DISPATCH_PROPERTYGET).result, DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(call(*catalogue_, kTotalPlugins, DISPATCH_METHOD).result, DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(call(*catalogue_, kTotalPlugins, DISPATCH_PROPERTYPUT, {Variant::int16(2)}).result,
              DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(call(*entry_, kDoesFrameEdit, DISPATCH_PROPERTYGET).result, DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(call(*entry_, kTotalPlugins, DISPATCH_PROPERTYGET).result, DISP_E_MEMBERNOTFOUND);
}

TEST_F(Invoke, NeedsNoPlacesForItsAnswers) {
    DISPPARAMS none{};
    EXPECT_EQ(catalogue_->Invoke(kTotalPlugins, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr),
              S_OK);
    VARIANTARG bad_index = Variant::int16(5).get();
    DISPPARAMS one{&bad_index, nullptr, 1, 0};
    EXPECT_EQ(catalogue_->Invoke(kPluginNames, IID_NULL, 0, DISPATCH_PROPERTYGET, &one, nullptr, nullptr, nullptr),
              DISP_E_EXCEPTION);
    VARIANTARG bad_type = null_value().get();
    one.rgvarg = &bad_type;
    EXPECT_EQ(catalogue_->Invoke(kPluginNames, IID_NULL, 0, DISPATCH_PROPERTYGET, &one, nullptr, nullptr, nullptr),
              DISP_E_TYPEMISMATCH);
    EXPECT_TRUE(FAILED(
        catalogue_->Invoke(kTotalPlugins, IID_NULL, 0, DISPATCH_PROPERTYGET, nullptr, nullptr, nullptr, nullptr)));
    EXPECT_EQ(
        catalogue_->Invoke(kTotalPlugins, IID_IUnknown, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr),
        DISP_E_UNKNOWNINTERFACE);
}

TEST_F(Invoke, ReadsParameterNamesBehindTheMembersName) {
    std::u16string member = u"pluginnames";
    std::u16string parameter = u"IINDEX";
    std::u16string nonsense = u"iIndices";
    LPOLESTR names[] = {reinterpret_cast<LPOLESTR>(member.data()), reinterpret_cast<LPOLESTR>(parameter.data()),
                        reinterpret_cast<LPOLESTR>(nonsense.data())};
    DISPID ids[3] = {7, 7, 7};
    EXPECT_EQ(catalogue_->GetIDsOfNames(IID_NULL, names, 2, LOCALE_USER_DEFAULT, ids), S_OK);
    EXPECT_EQ(ids[0], kPluginNames);
    EXPECT_EQ(ids[1], 0);
    EXPECT_EQ(catalogue_->GetIDsOfNames(IID_NULL, names, 3, LOCALE_USER_DEFAULT, ids), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ids[1], 0);
    EXPECT_EQ(ids[2], DISPID_UNKNOWN);
    EXPECT_EQ(catalogue_->GetIDsOfNames(IID_IUnknown, names, 1, LOCALE_USER_DEFAULT, ids), DISP_E_UNKNOWNINTERFACE);
}

}  // namespace
}  // namespace vex::plugin_test
