// What the two classes answer, called late.
#include <gtest/gtest.h>

#include "plugin/interfaces.h"
#include "tests/plugin/late_call.h"
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {
namespace {

using com::Variant;

constexpr DISPID kTotalPlugins = 0x68030004;
constexpr DISPID kPluginNames = 0x68030003;
constexpr DISPID kPluginDescription = 0x68030002;
constexpr DISPID kPluginPic = 0x68030001;
constexpr DISPID kPluginDescriptiveName = 0x68030000;
constexpr DISPID kStartPlugin = 0x60030000;

constexpr char16_t kName[] = u"vexFirmwarePlugin.vexFirmwareUtil";
constexpr char16_t kDescription[] = u"Reset and Clear Display and also Load Firmware!";
constexpr char16_t kDescriptiveName[] = u"Reset & Clear/Load Firmware";

std::u16string text(const Outcome& outcome) {
    EXPECT_EQ(outcome.result, S_OK);
    EXPECT_EQ(outcome.value.type(), VT_BSTR);
    return std::u16string(com::view(outcome.value.get().bstrVal));
}

using Catalogue = PluginTest;

TEST_F(Catalogue, TellsOfOneFeature) {
    const auto catalogue = make(kCatalogueClass);
    const Outcome total = call(*catalogue, kTotalPlugins, DISPATCH_PROPERTYGET);
    ASSERT_EQ(total.value.type(), VT_I2);
    EXPECT_EQ(total.value.get().iVal, 1);
    // Visual Basic's late calls cannot tell properties from methods and ask for both.
    constexpr WORD kEither = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
    EXPECT_EQ(text(call(*catalogue, kPluginNames, kEither, {Variant::int16(0)})), kName);
    EXPECT_EQ(text(call(*catalogue, kPluginDescription, kEither, {Variant::int16(0)})), kDescription);
    EXPECT_EQ(text(call(*catalogue, kPluginDescriptiveName, kEither, {Variant::int16(0)})), kDescriptiveName);
}

TEST_F(Catalogue, TextsFailOnOtherIndexesWithErrorNine) {
    const auto catalogue = make(kCatalogueClass);
    for (const DISPID member : {kPluginNames, kPluginDescription, kPluginDescriptiveName}) {
        for (const int index : {1, -1, 32767, -32768}) {
            const Outcome outcome =
                call(*catalogue, member, DISPATCH_PROPERTYGET, {Variant::int16(static_cast<std::int16_t>(index))});
            EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
            EXPECT_EQ(outcome.code, error_code(9));
            EXPECT_EQ(outcome.description, u"Subscript out of range");
            EXPECT_EQ(outcome.source, u"vexFirmWarePlugin");
            EXPECT_EQ(outcome.value.type(), VT_EMPTY);
        }
    }
}

void expect_icon(const VARIANT& value) {
    ASSERT_EQ(value.vt, VT_DISPATCH);
    ASSERT_NE(value.pdispVal, nullptr);
    const auto picture = com::ComPtr<IDispatch>(value.pdispVal).query<IPicture>();
    ASSERT_TRUE(picture);
    SHORT type = 0;
    OLE_XSIZE_HIMETRIC width = 0;
    OLE_YSIZE_HIMETRIC height = 0;
    EXPECT_TRUE(picture->get_Type(&type) == S_OK && picture->get_Width(&width) == S_OK &&
                picture->get_Height(&height) == S_OK);
    EXPECT_EQ(type, PICTYPE_ICON);
    EXPECT_NEAR(width, 423, 1) << "16 pixels of 1/96 inch";
    EXPECT_NEAR(height, 423, 1);
}

TEST_F(Catalogue, PicturesAreEmptyForOtherIndexes) {
    const auto catalogue = make(kCatalogueClass);
    expect_icon(call(*catalogue, kPluginPic, DISPATCH_PROPERTYGET, {Variant::int16(0)}).value.get());
    for (const int index : {1, -1, -101, -200, 32767, -32768}) {
        const Outcome outcome =
            call(*catalogue, kPluginPic, DISPATCH_PROPERTYGET, {Variant::int16(static_cast<std::int16_t>(index))});
        EXPECT_EQ(outcome.result, S_OK) << index;
        EXPECT_EQ(outcome.value.type(), VT_DISPATCH);
        EXPECT_EQ(outcome.value.get().pdispVal, nullptr);
    }
}

TEST_F(Catalogue, ErrorsOfEarlyCallsComeAsErrorInformation) {
    const auto object = make(kCatalogueClass);
    com::ComPtr<plugin::IPluginData> catalogue;
    ASSERT_EQ(object->QueryInterface(kCatalogueInterface, catalogue.put_void()), S_OK);
    com::Bstr name;
    EXPECT_EQ(catalogue->get_PluginNames(0, name.put()), S_OK);
    EXPECT_EQ(name.str(), kName);
    BSTR poisoned = name.get();
    EXPECT_EQ(catalogue->get_PluginNames(1, &poisoned), error_code(9));
    EXPECT_EQ(poisoned, nullptr);
    com::ComPtr<IErrorInfo> info;
    ASSERT_EQ(GetErrorInfo(0, info.put()), S_OK);
    com::Bstr description, source;
    GUID raised_by{};
    info->GetDescription(description.put());
    info->GetSource(source.put());
    info->GetGUID(&raised_by);
    EXPECT_EQ(description.str(), u"Subscript out of range");
    EXPECT_EQ(source.str(), u"vexFirmWarePlugin");
    EXPECT_TRUE(IsEqualGUID(raised_by, kCatalogueInterface));
    EXPECT_EQ(catalogue->get_PluginNames(1, &poisoned), error_code(9));
    EXPECT_EQ(catalogue->get_PluginNames(0, name.put()), S_OK);
    EXPECT_EQ(GetErrorInfo(0, info.put()), S_FALSE) << "a call that works clears an older error";
    EXPECT_EQ(catalogue->get_PluginNames(0, nullptr), E_POINTER);
    EXPECT_EQ(catalogue->get_TotalPlugins(nullptr), E_POINTER);
    EXPECT_EQ(catalogue->get_PluginPic(0, nullptr), E_POINTER);
}

TEST_F(Catalogue, HasOneTypeDescriptionOrNone) {
    const auto catalogue = make(kCatalogueClass);
    UINT count = 7;
    EXPECT_EQ(catalogue->GetTypeInfoCount(nullptr), E_POINTER);
    EXPECT_EQ(catalogue->GetTypeInfoCount(&count), S_OK);
    EXPECT_LE(count, 1U);
    com::ComPtr<ITypeInfo> type;
    EXPECT_EQ(catalogue->GetTypeInfo(0, LOCALE_USER_DEFAULT, nullptr), E_POINTER);
    EXPECT_EQ(catalogue->GetTypeInfo(1, LOCALE_USER_DEFAULT, type.put()), DISP_E_BADINDEX);
    EXPECT_EQ(SUCCEEDED(catalogue->GetTypeInfo(0, LOCALE_USER_DEFAULT, type.put())), count == 1);
    EXPECT_EQ(static_cast<bool>(type), count == 1);
}

using Entry = PluginTest;

TEST_F(Entry, SaysTheSameOfItself) {
    const auto entry = make(kEntryClass);
    EXPECT_EQ(text(call(*entry, 0x60030005, DISPATCH_METHOD)), kName);
    EXPECT_EQ(text(call(*entry, 0x60030006, DISPATCH_METHOD)), kDescription);
    EXPECT_EQ(text(call(*entry, 0x60030008, DISPATCH_METHOD)), kDescriptiveName);
    expect_icon(call(*entry, 0x60030007, DISPATCH_METHOD).value.get());
}

TEST_F(Entry, TakesNoPartInFramesAndTransmissions) {
    const auto entry = make(kEntryClass);
    for (const DISPID member : {0x60030001, 0x60030003}) {
        const Outcome outcome = call(*entry, member, DISPATCH_METHOD);
        ASSERT_EQ(outcome.value.type(), VT_BOOL);
        EXPECT_EQ(outcome.value.get().boolVal, VARIANT_FALSE);
    }
    IDispatch* mine = entry.get();
    const Outcome outcome = call(*entry, 0x60030004, DISPATCH_METHOD, {Variant::object_reference(&mine)});
    EXPECT_EQ(outcome.result, S_OK);
    EXPECT_EQ(outcome.value.type(), VT_EMPTY);
    EXPECT_EQ(mine, entry.get()) << "the argument is left alone";
}

TEST_F(Entry, NamesLeadToTheSameMembers) {
    const auto catalogue = make(kCatalogueClass);
    const auto entry = make(kEntryClass);
    EXPECT_EQ(id_of(*catalogue, u"PLUGINDESCRIPTIVENAME"), kPluginDescriptiveName);
    EXPECT_EQ(id_of(*catalogue, u"pluginpic"), kPluginPic);
    EXPECT_EQ(id_of(*entry, u"StartPlugin"), kStartPlugin);
    for (const char16_t* name : {u"TotalPlugins", u"StartPlugi", u"StartPlugins", u""}) {
        EXPECT_EQ(id_of(*entry, name), DISPID_UNKNOWN);
    }
}

}  // namespace
}  // namespace vex::plugin_test
