// What the type library says, in the words of the tests that read it.
#pragma once

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

}  // namespace vex::plugin_test
