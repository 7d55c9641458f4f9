// What the members of the two classes answer, called through the virtual table and late.
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {
namespace {

using com::Variant;

constexpr char16_t kName[] = u"vexFirmwarePlugin.vexFirmwareUtil";
constexpr char16_t kDescription[] = u"Reset and Clear Display and also Load Firmware!";
constexpr char16_t kDescriptiveName[] = u"Reset & Clear/Load Firmware";

enum class Takes { nothing, index, object };

struct Member {
    GUID clsid;
    GUID iid;
    std::size_t slot;
    DISPID id;
    std::u16string name;
    Takes argument;
    VARTYPE result;
    std::u16string text = {};
    HRESULT code = S_OK;
};

/// Where no desktop is, or no host with its display list, a wizard cannot open.
constexpr HRESULT kNoWizard = error_code(429);

std::vector<Member> members() {
    const auto catalogue = [](std::size_t slot, const char16_t* name, Takes argument, VARTYPE result,
                              const char16_t* text = u"") {
        return Member{kCatalogueClass, kCatalogueInterface, slot, static_cast<DISPID>(0x68030004 - (slot - 7)), name,
                      argument, result, text};
    };
    const auto entry = [](std::size_t slot, const char16_t* name, Takes argument, VARTYPE result,
                          const char16_t* text = u"", HRESULT code = S_OK) {
        return Member{kEntryClass, kEntryInterface, slot, static_cast<DISPID>(0x60030000 + (slot - 7)), name,
                      argument, result, text, code};
    };
    return {
        catalogue(7, u"TotalPlugins", Takes::nothing, VT_I2),
        catalogue(8, u"PluginNames", Takes::index, VT_BSTR, kName),
        catalogue(9, u"PluginDescription", Takes::index, VT_BSTR, kDescription),
        catalogue(10, u"PluginPic", Takes::index, VT_DISPATCH),
        catalogue(11, u"PluginDescriptiveName", Takes::index, VT_BSTR, kDescriptiveName),
        entry(7, u"StartPlugin", Takes::object, VT_EMPTY, u"", kNoWizard),
        entry(8, u"DoesFrameEdit", Takes::nothing, VT_BOOL),
        entry(9, u"StartFrameFeature", Takes::object, VT_EMPTY, u"", kNoWizard),
        entry(10, u"DoesPreTransmit", Takes::nothing, VT_BOOL),
        entry(11, u"StartPreTransmit", Takes::object, VT_EMPTY),
        entry(12, u"GetMyName", Takes::nothing, VT_BSTR, kName),
        entry(13, u"GetMyDescription", Takes::nothing, VT_BSTR, kDescription),
        entry(14, u"GetMyPicture", Takes::nothing, VT_DISPATCH),
        entry(15, u"GetMyDescriptiveName", Takes::nothing, VT_BSTR, kDescriptiveName),
    };
}

template <class... Arguments>
HRESULT call_slot(IUnknown* object, std::size_t slot, Arguments... arguments) {
    using Method = HRESULT(STDMETHODCALLTYPE*)(IUnknown*, Arguments...);
    return reinterpret_cast<Method>((*reinterpret_cast<void***>(object))[slot])(object, arguments...);
}

void expect_icon(IDispatch* object) {
    ASSERT_NE(object, nullptr);
    const auto picture = com::ComPtr<IDispatch>(object).query<IPicture>();
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

void expect_answer(const Member& member, const VARIANT& value) {
    switch (member.result) {
        case VT_I2: EXPECT_EQ(value.iVal, 1); break;
        case VT_BOOL: EXPECT_EQ(value.boolVal, VARIANT_FALSE); break;
        case VT_BSTR: EXPECT_EQ(com::view(value.bstrVal), member.text); break;
        case VT_DISPATCH: expect_icon(value.pdispVal); break;
        default: break;
    }
}

using Members = PluginTest;

TEST_F(Members, AnswerInTheirPlaceAndByTheirName) {
    for (const Member& member : members()) {
        SCOPED_TRACE(testing::Message() << "slot " << member.slot << " " << std::hex << member.id);
        const auto object = make(member.clsid);
        com::ComPtr<IUnknown> dual;
        ASSERT_EQ(object->QueryInterface(member.iid, dual.put_void()), S_OK);
        IDispatch* mine = object.get();

        Variant early;
        // Everything that a result is shorter than; the picture's and the text's places are nulled by the callee.
        early.get().llVal = 0x7777777777777777;
        void* result = &early.get().llVal;
        const HRESULT code = member.argument == Takes::nothing ? call_slot(dual.get(), member.slot, result)
                             : member.argument == Takes::index ? call_slot(dual.get(), member.slot, SHORT{0}, result)
                                                               : call_slot(dual.get(), member.slot, &mine);
        EXPECT_EQ(code, member.code);
        early.get().vt = SUCCEEDED(code) ? member.result : VARTYPE{VT_EMPTY};
        expect_answer(member, early.get());
        if (member.argument != Takes::object) {
            const HRESULT refused = member.argument == Takes::nothing
                                        ? call_slot(dual.get(), member.slot, static_cast<void*>(nullptr))
                                        : call_slot(dual.get(), member.slot, SHORT{0}, static_cast<void*>(nullptr));
            EXPECT_EQ(refused, E_POINTER);
        }

        std::u16string name = member.name;
        for (char16_t& letter : name) letter = static_cast<char16_t>(letter >= u'a' ? letter - u'a' + u'A' : letter);
        auto* text = reinterpret_cast<LPOLESTR>(name.data());
        DISPID id = DISPID_UNKNOWN;
        EXPECT_EQ(object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id), S_OK);
        EXPECT_EQ(id, member.id);

        std::vector<Variant> arguments;
        if (member.argument == Takes::index) arguments.push_back(Variant::int16(0));
        if (member.argument == Takes::object) arguments.push_back(Variant::object_reference(&mine));
        // Clients that cannot tell properties from methods ask for both.
        const Outcome late = call(*object, member.id, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments);
        EXPECT_EQ(late.result, member.code == S_OK ? S_OK : DISP_E_EXCEPTION);
        EXPECT_EQ(late.code, member.code);
        ASSERT_EQ(late.value.type(), member.result);
        expect_answer(member, late.value.get());
        EXPECT_EQ(mine, object.get()) << "the argument is left alone";

        const WORD other_kind = IsEqualGUID(member.clsid, kEntryClass) ? DISPATCH_PROPERTYGET : DISPATCH_METHOD;
        EXPECT_EQ(call(*object, member.id, other_kind, arguments).result, DISP_E_MEMBERNOTFOUND);
    }
}

TEST_F(Members, OtherIndexesFailForTextsAndAreNoPictures) {
    const auto catalogue = make(kCatalogueClass);
    for (const int index : {1, -1, -101, -200, 32767, -32768}) {
        const std::vector<Variant> arguments{Variant::int16(static_cast<std::int16_t>(index))};
        for (const DISPID member : {kPluginNames, kPluginDescription, kPluginDescriptiveName}) {
            const Outcome outcome = call(*catalogue, member, DISPATCH_PROPERTYGET, arguments);
            EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
            EXPECT_EQ(outcome.code, error_code(9));
            EXPECT_EQ(outcome.description, u"Subscript out of range");
            EXPECT_EQ(outcome.source, u"vexFirmWarePlugin");
            EXPECT_EQ(outcome.value.type(), VT_EMPTY);
        }
        const Outcome picture = call(*catalogue, kPluginPic, DISPATCH_PROPERTYGET, arguments);
        EXPECT_EQ(picture.result, S_OK) << index;
        EXPECT_EQ(picture.value.type(), VT_DISPATCH);
        EXPECT_EQ(picture.value.get().pdispVal, nullptr);
    }
}

TEST_F(Members, ErrorsOfEarlyCallsComeAsErrorInformation) {
    const auto catalogue = make(kCatalogueClass);
    const auto names = [&catalogue](SHORT index, BSTR* name) { return call_slot(catalogue.get(), 8, index, name); };
    com::Bstr name;
    BSTR poisoned = reinterpret_cast<BSTR>(std::uintptr_t{0xDEAD});
    EXPECT_EQ(names(1, &poisoned), error_code(9));
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
    EXPECT_EQ(names(1, &poisoned), error_code(9));
    EXPECT_EQ(names(0, name.put()), S_OK);
    EXPECT_EQ(GetErrorInfo(0, info.put()), S_FALSE) << "a call that works clears an older error";
}

TEST_F(Members, HaveOneTypeDescriptionOrNone) {
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

}  // namespace
}  // namespace vex::plugin_test
