// The contract that hosts rely on: identities, classes, interfaces and their members, as tables. They are
// the only source of names, dispatch ids and types for GetIDsOfNames, Invoke, the registration and the type
// library, whose writer runs on the build machine; hence the plain data.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "com/com.h"

namespace vex::plugin {

/// The types of parameters and results.
enum class ValueType {
    nothing,
    int16,
    text,
    boolean,
    /// An automation object.
    object,
    /// An OLE picture.
    picture,
};

enum class Passing {
    /// In, by value.
    by_value,
    /// In and out, by reference.
    by_reference,
    /// In and out, by reference; may be left out.
    optional_by_reference,
};

struct Parameter {
    std::string_view name;
    ValueType type;
    Passing passing;
};

enum class MemberKind { property_get, method };

struct Member {
    std::string_view name;
    DISPID id;
    MemberKind kind;
    std::span<const Parameter> parameters;
    ValueType result;
};

/// A dual interface derived from IDispatch; its members stand in the order of the virtual table.
struct Interface {
    std::string_view name;
    GUID id;
    std::span<const Member> members;
};

/// A creatable class with one interface, its default.
struct Class {
    std::string_view name;
    GUID id;
    const Interface& default_interface;
};

struct Library {
    std::string_view name;
    GUID id;
    std::uint16_t major_version;
    std::uint16_t minor_version;
    std::span<const Class> classes;
};

// ---- The catalogue: what the library contributes --------------------------------------------------------

inline constexpr Parameter kIndexParameter[] = {{"iIndex", ValueType::int16, Passing::by_value}};

// The ids run downwards in member order; hosts that call by id depend on it.
inline constexpr Member kPluginDataMembers[] = {
    {"TotalPlugins", 0x68030004, MemberKind::property_get, {}, ValueType::int16},
    {"PluginNames", 0x68030003, MemberKind::property_get, kIndexParameter, ValueType::text},
    {"PluginDescription", 0x68030002, MemberKind::property_get, kIndexParameter, ValueType::text},
    {"PluginPic", 0x68030001, MemberKind::property_get, kIndexParameter, ValueType::picture},
    {"PluginDescriptiveName", 0x68030000, MemberKind::property_get, kIndexParameter, ValueType::text},
};

inline constexpr Interface kPluginDataInterface = {
    "_PluginData",
    {0x28D15CCC, 0xA58D, 0x44F0, {0x8A, 0xAF, 0x3E, 0xEC, 0xB0, 0x73, 0x6F, 0xA9}},
    kPluginDataMembers,
};

// ---- The entry class: what the host calls to start the feature ------------------------------------------

inline constexpr Parameter kActiveParameter[] = {{"bActive", ValueType::object, Passing::optional_by_reference}};
inline constexpr Parameter kFrameParameter[] = {{"fMyFrm", ValueType::object, Passing::by_reference}};
inline constexpr Parameter kObjectParameter[] = {{"vexObject", ValueType::object, Passing::by_reference}};

inline constexpr Member kFirmWareUtilMembers[] = {
    {"StartPlugin", 0x60030000, MemberKind::method, kActiveParameter, ValueType::nothing},
    {"DoesFrameEdit", 0x60030001, MemberKind::method, {}, ValueType::boolean},
    {"StartFrameFeature", 0x60030002, MemberKind::method, kFrameParameter, ValueType::nothing},
    {"DoesPreTransmit", 0x60030003, MemberKind::method, {}, ValueType::boolean},
    {"StartPreTransmit", 0x60030004, MemberKind::method, kObjectParameter, ValueType::nothing},
    {"GetMyName", 0x60030005, MemberKind::method, {}, ValueType::text},
    {"GetMyDescription", 0x60030006, MemberKind::method, {}, ValueType::text},
    {"GetMyPicture", 0x60030007, MemberKind::method, {}, ValueType::picture},
    {"GetMyDescriptiveName", 0x60030008, MemberKind::method, {}, ValueType::text},
};

inline constexpr Interface kFirmWareUtilInterface = {
    "_vexFirmWareUtil",
    {0x4EA9496B, 0x9BA4, 0x4BD0, {0xA3, 0x67, 0xC0, 0xE0, 0xA8, 0x37, 0xB2, 0xE4}},
    kFirmWareUtilMembers,
};

// ---- The library ----------------------------------------------------------------------------------------

inline constexpr Class kClasses[] = {
    {"PluginData",
     {0x09D14609, 0x0E72, 0x4D6E, {0xA3, 0xB6, 0xD8, 0x40, 0x9C, 0x89, 0x77, 0x02}},
     kPluginDataInterface},
    {"vexFirmWareUtil",
     {0x4802794B, 0x38DD, 0x46AD, {0xA2, 0x90, 0xF2, 0x78, 0x25, 0xC7, 0x1C, 0xEA}},
     kFirmWareUtilInterface},
};
inline constexpr const Class& kPluginDataClass = kClasses[0];
inline constexpr const Class& kFirmWareUtilClass = kClasses[1];

inline constexpr Library kLibrary = {
    "vexFirmWarePlugin", {0x2D044802, 0x8D89, 0x4ECD, {0x8C, 0x1F, 0xF3, 0x52, 0x91, 0x43, 0xED, 0xDE}}, 1, 0, kClasses,
};

}  // namespace vex::plugin
