// What the type library says, and the words in which its two readers put it down.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>

#include "com/com.h"

namespace vex::plugin_test {

/// Flags of interfaces: hidden 0x10, dual 0x40, non-extensible 0x80, automation-compatible 0x100, dispatchable
/// 0x1000. Flags of classes: can create 0x2. "slot": the place in the virtual table.
inline constexpr char kExpectedTypeLibrary[] =
    R"(library vexFirmWarePlugin {2D044802-8D89-4ECD-8C1F-F3529143EDDE} 1.0, locale 0, system 1, no help
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

inline std::string guid_text(REFGUID guid) {
    OLECHAR wide[39];
    StringFromGUID2(guid, wide, 39);
    std::string text;
    for (int i = 0; i < 38; ++i) text += static_cast<char>(wide[i]);
    return text;
}

inline std::string hex_text(std::uint32_t number) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%X", static_cast<unsigned>(number));
    return text.data();
}

inline std::string simple_type_text(VARTYPE type) {
    switch (type) {
        case VT_I2: return "int16";
        case VT_BSTR: return "string";
        case VT_BOOL: return "boolean";
        case VT_DISPATCH: return "object";
        case VT_HRESULT: return "result";
        default: return "type " + std::to_string(type);
    }
}

inline std::string parameter_flags_text(std::uint32_t flags) {
    constexpr std::array<std::pair<std::uint32_t, const char*>, 4> kNames = {
        {{1, "in"}, {2, "out"}, {8, "retval"}, {0x10, "optional"}}};
    std::string text;
    for (const auto& [flag, name] : kNames) {
        if ((flags & flag) != 0) text += (text.empty() ? "" : ", ") + std::string(name);
    }
    if ((flags & ~0x1BU) != 0) text += " and " + hex_text(flags & ~0x1BU);
    return "[" + text + "] ";
}

}  // namespace vex::plugin_test
