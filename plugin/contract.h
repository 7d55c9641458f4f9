// The contract that hosts rely on: identities, classes, interfaces and their members, each with its call. These
// tables are the only source of names, dispatch ids and types for late calls, the registration and the type library,
// whose writer runs on the build machine; hence plain data that needs nothing to link with.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "com/com_ptr.h"
#include "core/product.h"

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

/// The argument of a late call, in the field of its parameter's type.
struct Argument {
    SHORT int16 = 0;
    /// Where the object stands.
    IDispatch** object = nullptr;
};

/// Calls a member of `object`, which has the member's interface. The result goes into the field of `result` that
/// fits its type.
using MemberCall = HRESULT (*)(IDispatch& object, const Argument& argument, VARIANT& result);

enum class MemberKind { property_get, method };

struct Member {
    std::string_view name;
    DISPID id;
    MemberKind kind;
    /// Null for none; no member has more than one.
    const Parameter* parameter;
    ValueType result;
    MemberCall call;
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

// ---- Calls, made of the interfaces' methods

/// A method's parameter as late calls have it: the argument, or the place of the result.
template <class Type>
Type passed(const Argument& argument, VARIANT& result);

template <>
inline SHORT passed(const Argument& argument, VARIANT& /*result*/) {
    return argument.int16;
}
template <>
inline IDispatch** passed(const Argument& argument, VARIANT& /*result*/) {
    return argument.object;
}
/// Of numbers and truth values, which are one type to C++ and share their place.
template <>
inline SHORT* passed(const Argument& /*argument*/, VARIANT& result) {
    return &result.iVal;
}
template <>
inline BSTR* passed(const Argument& /*argument*/, VARIANT& result) {
    return &result.bstrVal;
}
template <>
inline IPictureDisp** passed(const Argument& /*argument*/, VARIANT& result) {
    return reinterpret_cast<IPictureDisp**>(&result.pdispVal);
}

template <class Target, class... Types>
HRESULT call_method(HRESULT (STDMETHODCALLTYPE Target::*method)(Types...), IDispatch& object, const Argument& argument,
                    VARIANT& result) {
    return (static_cast<Target&>(object).*method)(passed<Types>(argument, result)...);
}

/// The call of a method.
template <auto method>
HRESULT call(IDispatch& object, const Argument& argument, VARIANT& result) {
    return call_method(method, object, argument, result);
}

// ---- The catalogue: what the library contributes

/// `_PluginData`. The order of the methods is the binary contract. Every result is nulled on failure; pictures and
/// strings are the caller's.
struct IPluginData : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE get_TotalPlugins(SHORT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_PluginNames(SHORT iIndex, BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_PluginDescription(SHORT iIndex, BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_PluginPic(SHORT iIndex, IPictureDisp** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_PluginDescriptiveName(SHORT iIndex, BSTR* result) = 0;
};

inline constexpr Parameter kIndex = {"iIndex", ValueType::int16, Passing::by_value};

// The ids run downwards in member order; hosts that call by id depend on it.
inline constexpr Member kPluginDataMembers[] = {
    {"TotalPlugins", 0x68030004, MemberKind::property_get, nullptr, ValueType::int16,
     call<&IPluginData::get_TotalPlugins>},
    {"PluginNames", 0x68030003, MemberKind::property_get, &kIndex, ValueType::text,
     call<&IPluginData::get_PluginNames>},
    {"PluginDescription", 0x68030002, MemberKind::property_get, &kIndex, ValueType::text,
     call<&IPluginData::get_PluginDescription>},
    {"PluginPic", 0x68030001, MemberKind::property_get, &kIndex, ValueType::picture, call<&IPluginData::get_PluginPic>},
    {"PluginDescriptiveName", 0x68030000, MemberKind::property_get, &kIndex, ValueType::text,
     call<&IPluginData::get_PluginDescriptiveName>},
};

inline constexpr Interface kPluginDataInterface = {
    "_PluginData",
    {0x28D15CCC, 0xA58D, 0x44F0, {0x8A, 0xAF, 0x3E, 0xEC, 0xB0, 0x73, 0x6F, 0xA9}},
    kPluginDataMembers,
};

// ---- The entry class: what the host calls to start the feature

/// `_vexFirmWareUtil`. The order of the methods is the binary contract.
struct IvexFirmWareUtil : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE StartPlugin(IDispatch** bActive) = 0;
    virtual HRESULT STDMETHODCALLTYPE DoesFrameEdit(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE StartFrameFeature(IDispatch** fMyFrm) = 0;
    virtual HRESULT STDMETHODCALLTYPE DoesPreTransmit(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE StartPreTransmit(IDispatch** vexObject) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMyName(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMyDescription(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMyPicture(IPictureDisp** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMyDescriptiveName(BSTR* result) = 0;
};

inline constexpr Parameter kActive = {"bActive", ValueType::object, Passing::optional_by_reference};
inline constexpr Parameter kFrame = {"fMyFrm", ValueType::object, Passing::by_reference};
inline constexpr Parameter kObject = {"vexObject", ValueType::object, Passing::by_reference};

inline constexpr Member kFirmWareUtilMembers[] = {
    {"StartPlugin", 0x60030000, MemberKind::method, &kActive, ValueType::nothing, call<&IvexFirmWareUtil::StartPlugin>},
    {"DoesFrameEdit", 0x60030001, MemberKind::method, nullptr, ValueType::boolean,
     call<&IvexFirmWareUtil::DoesFrameEdit>},
    {"StartFrameFeature", 0x60030002, MemberKind::method, &kFrame, ValueType::nothing,
     call<&IvexFirmWareUtil::StartFrameFeature>},
    {"DoesPreTransmit", 0x60030003, MemberKind::method, nullptr, ValueType::boolean,
     call<&IvexFirmWareUtil::DoesPreTransmit>},
    {"StartPreTransmit", 0x60030004, MemberKind::method, &kObject, ValueType::nothing,
     call<&IvexFirmWareUtil::StartPreTransmit>},
    {"GetMyName", 0x60030005, MemberKind::method, nullptr, ValueType::text, call<&IvexFirmWareUtil::GetMyName>},
    {"GetMyDescription", 0x60030006, MemberKind::method, nullptr, ValueType::text,
     call<&IvexFirmWareUtil::GetMyDescription>},
    {"GetMyPicture", 0x60030007, MemberKind::method, nullptr, ValueType::picture,
     call<&IvexFirmWareUtil::GetMyPicture>},
    {"GetMyDescriptiveName", 0x60030008, MemberKind::method, nullptr, ValueType::text,
     call<&IvexFirmWareUtil::GetMyDescriptiveName>},
};

inline constexpr Interface kFirmWareUtilInterface = {
    "_vexFirmWareUtil",
    {0x4EA9496B, 0x9BA4, 0x4BD0, {0xA3, 0x67, 0xC0, 0xE0, 0xA8, 0x37, 0xB2, 0xE4}},
    kFirmWareUtilMembers,
};

// ---- The library

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
    product::kProjectName,
    {0x2D044802, 0x8D89, 0x4ECD, {0x8C, 0x1F, 0xF3, 0x52, 0x91, 0x43, 0xED, 0xDE}},
    1,
    0,
    kClasses,
};

}  // namespace vex::plugin

namespace vex::com {

VEX_INTERFACE(plugin::IPluginData, IDispatch, plugin::kPluginDataInterface.id);
VEX_INTERFACE(plugin::IvexFirmWareUtil, IDispatch, plugin::kFirmWareUtilInterface.id);

}  // namespace vex::com
