// Windows only, for its loader: what the system's own loader reads in the type library in the plug-in's resources.
#include <cstdint>
#include <string>

#include "core/digits.h"
#include "core/unicode.h"
#include "plugin/contract.h"
#include "plugin/type_library/writer.h"
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {
namespace {

/// Flags of interfaces: hidden 0x10, dual 0x40, non-extensible 0x80, automation-compatible 0x100, dispatchable
/// 0x1000. Flags of classes: can create 0x2. "slot": the place in the virtual table.
constexpr char kExpectedTypeLibrary[] =
    R"(library vexFirmWarePlugin {2D044802-8D89-4ECD-8C1F-F3529143EDDE} 1.0, locale 0, system 1
interface _PluginData {28D15CCC-A58D-44F0-8AAF-3EECB0736FA9} 1.0, flags 0x11D0, from )"
    R"({00020400-0000-0000-C000-000000000046}
  0x68030004 get TotalPlugins, slot 7: [out, retval] int16*
  0x68030003 get PluginNames, slot 8: [in] int16 iIndex, [out, retval] string*
  0x68030002 get PluginDescription, slot 9: [in] int16 iIndex, [out, retval] string*
  0x68030001 get PluginPic, slot 10: [in] int16 iIndex, [out, retval] {7BF80981-BF32-101A-8BBB-00AA00300CAB}**
  0x68030000 get PluginDescriptiveName, slot 11: [in] int16 iIndex, [out, retval] string*
class PluginData {09D14609-0E72-4D6E-A3B6-D8409C897702} 1.0, flags 0x2
  default {28D15CCC-A58D-44F0-8AAF-3EECB0736FA9}
interface _vexFirmWareUtil {4EA9496B-9BA4-4BD0-A367-C0E0A837B2E4} 1.0, flags 0x11D0, from )"
    R"({00020400-0000-0000-C000-000000000046}
  0x60030000 method StartPlugin, slot 7: [in, out, optional] object* bActive
  0x60030001 method DoesFrameEdit, slot 8: [out, retval] boolean*
  0x60030002 method StartFrameFeature, slot 9: [in, out] object* fMyFrm
  0x60030003 method DoesPreTransmit, slot 10: [out, retval] boolean*
  0x60030004 method StartPreTransmit, slot 11: [in, out] object* vexObject
  0x60030005 method GetMyName, slot 12: [out, retval] string*
  0x60030006 method GetMyDescription, slot 13: [out, retval] string*
  0x60030007 method GetMyPicture, slot 14: [out, retval] {7BF80981-BF32-101A-8BBB-00AA00300CAB}**
  0x60030008 method GetMyDescriptiveName, slot 15: [out, retval] string*
class vexFirmWareUtil {4802794B-38DD-46AD-A290-F27825C71CEA} 1.0, flags 0x2
  default {4EA9496B-9BA4-4BD0-A367-C0E0A837B2E4}
)";

std::string guid_text(REFGUID guid) {
    OLECHAR wide[39];
    StringFromGUID2(guid, wide, 39);
    std::string text;
    for (int i = 0; i < 38; ++i) text += static_cast<char>(wide[i]);
    return text;
}

std::string hex_text(std::uint32_t number) { return "0x" + to_utf8(digits_of(number, 16)); }

std::string simple_type_text(VARTYPE type) {
    switch (type) {
        case VT_I2: return "int16";
        case VT_BSTR: return "string";
        case VT_BOOL: return "boolean";
        case VT_DISPATCH: return "object";
        default: return "type " + std::to_string(type);
    }
}

std::string parameter_flags_text(USHORT flags) {
    switch (flags) {
        case PARAMFLAG_FIN: return "[in] ";
        case PARAMFLAG_FIN | PARAMFLAG_FOUT: return "[in, out] ";
        case PARAMFLAG_FIN | PARAMFLAG_FOUT | PARAMFLAG_FOPT: return "[in, out, optional] ";
        case PARAMFLAG_FOUT | PARAMFLAG_FRETVAL: return "[out, retval] ";
        default: return "[" + hex_text(flags) + "] ";
    }
}

TYPEATTR attributes_of(ITypeInfo& type) {
    TYPEATTR* attributes = nullptr;
    EXPECT_EQ(type.GetTypeAttr(&attributes), S_OK);
    const TYPEATTR copy = *attributes;
    type.ReleaseTypeAttr(attributes);
    return copy;
}

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
    if (description.vt != VT_USERDEFINED) return simple_type_text(description.vt);
    return guid_text(attributes_of(*referenced(type, description.hreftype)).guid);
}

/// The name of a library, a type or a member; it has no help.
template <class Described>
std::string name_of(Described& described, MEMBERID member = MEMBERID_NIL) {
    com::Bstr name, help, file;
    DWORD context = 0;
    EXPECT_EQ(described.GetDocumentation(member, name.put(), help.put(), &context, file.put()), S_OK);
    EXPECT_TRUE(help.str().empty() && context == 0) << to_utf8(name.str());
    return to_utf8(name.str());
}

std::string members(ITypeInfo& type) {
    std::string text;
    for (UINT i = 0; i < attributes_of(type).cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        EXPECT_EQ(type.GetFuncDesc(i, &function), S_OK);
        BSTR names[4] = {};
        UINT count = 0;
        EXPECT_EQ(type.GetNames(function->memid, names, 4, &count), S_OK);
        text += "  " + hex_text(static_cast<std::uint32_t>(function->memid)) +
                (function->invkind == INVOKE_PROPERTYGET ? " get " : " method ") + name_of(type, function->memid) +
                ", slot " + std::to_string(static_cast<std::size_t>(function->oVft) / sizeof(void*)) + ":";
        EXPECT_EQ(function->elemdescFunc.tdesc.vt, VT_HRESULT);
        EXPECT_EQ(function->funckind, FUNC_PUREVIRTUAL);
        EXPECT_EQ(function->callconv, CC_STDCALL);
        for (UINT k = 0; k < static_cast<UINT>(function->cParams); ++k) {
            const ELEMDESC& parameter = function->lprgelemdescParam[k];
            text += (k == 0 ? " " : ", ") + parameter_flags_text(parameter.paramdesc.wParamFlags) +
                    type_text(type, parameter.tdesc) + (k + 1 < count ? " " + to_utf8(com::view(names[k + 1])) : "");
        }
        text += "\n";
        for (BSTR name : names) SysFreeString(name);
        type.ReleaseFuncDesc(function);
    }
    return text;
}

std::string head(ITypeInfo& type) {
    const TYPEATTR attributes = attributes_of(type);
    return name_of(type) + " " + guid_text(attributes.guid) + " " + std::to_string(attributes.wMajorVerNum) + "." +
           std::to_string(attributes.wMinorVerNum) + ", flags " + hex_text(attributes.wTypeFlags);
}

std::string describe(ITypeInfo& type) {
    const TYPEATTR attributes = attributes_of(type);
    if (attributes.typekind == TKIND_COCLASS) {
        INT flags = 0;
        EXPECT_EQ(type.GetImplTypeFlags(0, &flags), S_OK);
        EXPECT_EQ(attributes.cImplTypes, 1);
        return "class " + head(type) + "\n  " + (flags == IMPLTYPEFLAG_FDEFAULT ? "default " : "other ") +
               guid_text(attributes_of(*implemented(type, 0)).guid) + "\n";
    }
    // A dual interface shows its dispatch side, which leads to the side with the virtual table and all flags.
    EXPECT_EQ(attributes.typekind, TKIND_DISPATCH);
    const auto table_side = implemented(type, static_cast<UINT>(-1));
    return "interface " + head(*table_side) + ", from " +
           guid_text(attributes_of(*implemented(*table_side, 0)).guid) + "\n" + members(*table_side);
}

using TypeLibraryLoader = PluginTest;

com::ComPtr<ITypeLib> load_type_library() {
    com::ComPtr<ITypeLib> library;
    EXPECT_EQ(LoadTypeLibEx(plugin_file().c_str(), REGKIND_NONE, library.put()), S_OK);
    return library;
}

TEST_F(TypeLibraryLoader, ShowsWhatTheContractSays) {
    const auto library = load_type_library();
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
    std::string text = "library " + name_of(*library.get()) + " " + guid_text(attributes->guid) + " " +
                       std::to_string(attributes->wMajorVerNum) + "." + std::to_string(attributes->wMinorVerNum) +
                       ", locale " + std::to_string(attributes->lcid) + ", system " +
                       std::to_string(attributes->syskind) + "\n";
    EXPECT_EQ(attributes->wLibFlags & ~LIBFLAG_FHASDISKIMAGE, 0);
    library->ReleaseTLibAttr(attributes);
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        com::ComPtr<ITypeInfo> type;
        ASSERT_EQ(library->GetTypeInfo(i, type.put()), S_OK);
        text += describe(*type);
    }
    EXPECT_EQ(text, kExpectedTypeLibrary);
}

TEST_F(TypeLibraryLoader, FindsTypesByIdentityAndNamesByTheirHash) {
    const auto library = load_type_library();
    com::ComPtr<ITypeInfo> type;
    for (const GUID& guid : {kCatalogueClass, kCatalogueInterface, kEntryClass, kEntryInterface})
        EXPECT_EQ(library->GetTypeInfoOfGuid(guid, type.put()), S_OK);
    for (const plugin::Class& described : plugin::kLibrary.classes) {
        for (const plugin::Member& member : described.default_interface.members) {
            std::wstring name(member.name.begin(), member.name.end());
            BOOL found = FALSE;
            EXPECT_EQ(library->IsName(name.data(), 0, &found), S_OK);
            EXPECT_TRUE(found) << member.name;
            const ULONG hash = LHashValOfNameSys(SYS_WIN32, 0x0409, name.c_str()) & 0xFFFF;
            EXPECT_EQ(hash, type_library::name_hash(member.name));
        }
    }
}

}  // namespace
}  // namespace vex::plugin_test
