// Windows only, for its loader: the system's own loader reads the type library in the plug-in's resources, and calls by
// it.
#include "plugin/contract.h"
#include "plugin/type_library/writer.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/plugin/type_library_words.h"

namespace vex::plugin_test {
namespace {

std::string narrow(BSTR text) {
    std::string result;
    for (const char16_t character : com::view(text)) result += static_cast<char>(character);
    return result;
}

/// A type description's attributes, given back when this is gone.
class Attributes {
public:
    explicit Attributes(ITypeInfo& type) : type_(type) { EXPECT_EQ(type.GetTypeAttr(&attributes_), S_OK); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() { type_.ReleaseTypeAttr(attributes_); }
    const TYPEATTR* operator->() const noexcept { return attributes_; }

private:
    ITypeInfo& type_;
    TYPEATTR* attributes_ = nullptr;
};

std::string guid_of(ITypeInfo& type) { return guid_text(Attributes(type)->guid); }

com::ComPtr<ITypeInfo> referenced(ITypeInfo& type, HREFTYPE reference) {
    com::ComPtr<ITypeInfo> result;
    EXPECT_EQ(type.GetRefTypeInfo(reference, result.put()), S_OK);
    return result;
}

com::ComPtr<ITypeInfo> implemented(ITypeInfo& type, UINT index) {
    HREFTYPE reference = 0;
    EXPECT_EQ(type.GetRefTypeOfImplType(index, &reference), S_OK);
    return referenced(type, reference);
}

std::string type_text(ITypeInfo& type, const TYPEDESC& description) {
    if (description.vt == VT_PTR) return type_text(type, *description.lptdesc) + "*";
    if (description.vt == VT_USERDEFINED) return guid_of(*referenced(type, description.hreftype));
    return simple_type_text(description.vt);
}

std::string documentation(ITypeInfo& type, MEMBERID member) {
    com::Bstr name;
    com::Bstr help;
    DWORD context = 0;
    com::Bstr file;
    EXPECT_EQ(type.GetDocumentation(member, name.put(), help.put(), &context, file.put()), S_OK);
    return narrow(name.get()) + (help.str().empty() && context == 0 ? "" : " with help");
}

std::string members(ITypeInfo& type) {
    std::string text;
    const Attributes attributes(type);
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        EXPECT_EQ(type.GetFuncDesc(i, &function), S_OK);
        BSTR names[4] = {};
        UINT count = 0;
        EXPECT_EQ(type.GetNames(function->memid, names, 4, &count), S_OK);
        text += "  " + hex_text(static_cast<std::uint32_t>(function->memid)) +
                (function->invkind == INVOKE_PROPERTYGET ? " get " : " method ") +
                documentation(type, function->memid) + ", slot " +
                std::to_string(static_cast<std::size_t>(function->oVft) / sizeof(void*)) + ":";
        EXPECT_EQ(simple_type_text(function->elemdescFunc.tdesc.vt), "result");
        EXPECT_EQ(function->funckind, FUNC_PUREVIRTUAL);
        EXPECT_EQ(function->callconv, CC_STDCALL);
        for (UINT k = 0; k < static_cast<UINT>(function->cParams); ++k) {
            const ELEMDESC& parameter = function->lprgelemdescParam[k];
            text += (k == 0 ? " " : ", ") + parameter_flags_text(parameter.paramdesc.wParamFlags) +
                    type_text(type, parameter.tdesc) + (k + 1 < count ? " " + narrow(names[k + 1]) : "");
        }
        text += "\n";
        for (BSTR name : names) SysFreeString(name);
        type.ReleaseFuncDesc(function);
    }
    return text;
}

std::string head(ITypeInfo& type) {
    const Attributes attributes(type);
    return documentation(type, MEMBERID_NIL) + " " + guid_text(attributes->guid) + " " +
           std::to_string(attributes->wMajorVerNum) + "." + std::to_string(attributes->wMinorVerNum) + ", flags " +
           hex_text(attributes->wTypeFlags);
}

std::string describe(ITypeInfo& type) {
    const Attributes attributes(type);
    if (attributes->typekind == TKIND_COCLASS) {
        INT flags = 0;
        EXPECT_EQ(type.GetImplTypeFlags(0, &flags), S_OK);
        EXPECT_EQ(attributes->cImplTypes, 1);
        return "class " + head(type) + "\n  " + (flags == IMPLTYPEFLAG_FDEFAULT ? "default " : "other ") +
               guid_of(*implemented(type, 0)) + "\n";
    }
    // A dual interface shows its dispatch side, which leads to the side with the virtual table and all flags.
    EXPECT_EQ(attributes->typekind, TKIND_DISPATCH);
    const auto table_side = implemented(type, static_cast<UINT>(-1));
    return "interface " + head(*table_side) + ", from " + guid_of(*implemented(*table_side, 0)) + "\n" +
           members(*table_side);
}

class TypeLibraryLoader : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        ASSERT_EQ(LoadTypeLibEx(plugin_file().c_str(), REGKIND_NONE, library_.put()), S_OK);
    }
    void TearDown() override {
        library_.reset();
        PluginTest::TearDown();
    }

    com::ComPtr<ITypeLib> library_;
};

TEST_F(TypeLibraryLoader, ShowsWhatTheContractSays) {
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(library_->GetLibAttr(&attributes), S_OK);
    com::Bstr name;
    com::Bstr help;
    com::Bstr help_file;
    DWORD context = 0;
    ASSERT_EQ(library_->GetDocumentation(-1, name.put(), help.put(), &context, help_file.put()), S_OK);
    const bool has_help = !help.str().empty() || !help_file.str().empty() || context != 0;
    std::string text = "library " + narrow(name.get()) + " " + guid_text(attributes->guid) + " " +
                       std::to_string(attributes->wMajorVerNum) + "." + std::to_string(attributes->wMinorVerNum) +
                       ", locale " + std::to_string(attributes->lcid) + ", system " +
                       std::to_string(attributes->syskind) + (has_help ? ", help" : ", no help") + "\n";
    EXPECT_EQ(attributes->wLibFlags & ~LIBFLAG_FHASDISKIMAGE, 0);
    library_->ReleaseTLibAttr(attributes);
    for (UINT i = 0; i < library_->GetTypeInfoCount(); ++i) {
        com::ComPtr<ITypeInfo> type;
        ASSERT_EQ(library_->GetTypeInfo(i, type.put()), S_OK);
        text += describe(*type);
    }
    EXPECT_EQ(text, kExpectedTypeLibrary);
}

TEST_F(TypeLibraryLoader, FindsTypesByIdentityAndNamesByTheirHash) {
    for (const GUID& guid : {kCatalogueClass, kCatalogueInterface, kEntryClass, kEntryInterface}) {
        com::ComPtr<ITypeInfo> type;
        EXPECT_EQ(library_->GetTypeInfoOfGuid(guid, type.put()), S_OK);
    }
    for (const plugin::Class& type : plugin::kLibrary.classes) {
        for (const plugin::Member& member : type.default_interface.members) {
            std::wstring name(member.name.begin(), member.name.end());
            BOOL found = FALSE;
            EXPECT_EQ(library_->IsName(name.data(), 0, &found), S_OK);
            EXPECT_TRUE(found) << member.name;
            EXPECT_EQ(LHashValOfNameSys(SYS_WIN32, 0x0409, name.c_str()) & 0xFFFF,
                      type_library::name_hash(member.name));
        }
    }
}

TEST_F(TypeLibraryLoader, CallsMembersByTheirDescriptions) {
    const auto object = make(kCatalogueClass);
    com::ComPtr<ITypeInfo> type;
    ASSERT_EQ(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, type.put()), S_OK);

    com::ComPtr<IUnknown> target;
    ASSERT_EQ(object->QueryInterface(kCatalogueInterface, target.put_void()), S_OK);
    const auto name_at = [&](SHORT at, com::Variant& name, EXCEPINFO& exception) {
        VARIANTARG index = com::Variant::int16(at).get();
        DISPPARAMS parameters{&index, nullptr, 1, 0};
        return type->Invoke(target.get(), 0x68030003, DISPATCH_PROPERTYGET, &parameters, name.put(), &exception,
                            nullptr);
    };
    com::Variant name;
    EXCEPINFO exception{};
    EXPECT_EQ(name_at(0, name, exception), S_OK);
    ASSERT_EQ(name.type(), VT_BSTR);
    EXPECT_EQ(com::view(name.get().bstrVal), u"vexFirmwarePlugin.vexFirmwareUtil");
    EXPECT_EQ(name_at(1, name, exception), DISP_E_EXCEPTION);
    EXPECT_EQ(exception.scode, error_code(9));
    for (BSTR text : {exception.bstrDescription, exception.bstrSource, exception.bstrHelpFile}) SysFreeString(text);
}

}  // namespace
}  // namespace vex::plugin_test
