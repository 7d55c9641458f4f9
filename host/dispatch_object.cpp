// An automation object of the host, called late.
#include "host/dispatch_object.h"

#include <algorithm>

#include "com/late_call.h"
#include "core/runtime_error.h"

namespace vex::host {
namespace {

com::Variant converted(const com::Variant& value, VARTYPE type) {
    com::Variant result;
    const HRESULT outcome = VariantChangeType(result.put(), &value.get(), 0, type);
    if (FAILED(outcome)) throw com::error_of(outcome);
    return result;
}

com::ComPtr<IDispatch> create(REFCLSID clsid, const char16_t* name) {
    com::ComPtr<IDispatch> object;
    if (!com::succeeded(CoCreateInstance(clsid, nullptr, CLSCTX_ALL, IID_IDispatch, object.put_void()))) {
        throw RuntimeError(kCannotCreateObject, std::u16string(u"ActiveX component can't create object: ") + name);
    }
    return object;
}

}  // namespace

com::ComPtr<IDispatch> create_object(REFCLSID clsid, const char16_t* name) { return create(clsid, name); }

com::ComPtr<IDispatch> create_object(const char16_t* programmatic_id) {
    CLSID clsid = GUID_NULL;
    // An unknown identifier leaves the null class id, which cannot be created: one error for both.
    if (!com::succeeded(CLSIDFromProgID(reinterpret_cast<const OLECHAR*>(programmatic_id), &clsid))) clsid = GUID_NULL;
    return create(clsid, programmatic_id);
}

bool to_boolean(const com::Variant& value) { return converted(value, VT_BOOL).get().boolVal != VARIANT_FALSE; }

std::int16_t to_int16(const com::Variant& value) { return converted(value, VT_I2).get().iVal; }

std::int32_t to_int32(const com::Variant& value) { return converted(value, VT_I4).get().lVal; }

std::u16string to_text(const com::Variant& value) {
    if (value.type() == VT_BSTR) return std::u16string(com::view(value.get().bstrVal));
    return std::u16string(com::view(converted(value, VT_BSTR).get().bstrVal));
}

com::ComPtr<IDispatch> to_object(const com::Variant& value) {
    const com::Variant object = converted(value, VT_DISPATCH);
    if (object.get().pdispVal == nullptr) throw RuntimeError(kObjectVariableNotSet);
    return com::ComPtr<IDispatch>(object.get().pdispVal);
}

com::Variant DispatchObject::property(const char16_t* name) const {
    // Both flags, as late-bound callers pass them: they do not know whether it is a property or a method.
    return invoke(member_id(name), DISPATCH_METHOD | DISPATCH_PROPERTYGET, {});
}

void DispatchObject::set_property(const char16_t* name, com::Variant value) const {
    set_property(member_id(name), std::move(value));
}

com::Variant DispatchObject::call(const char16_t* name, std::initializer_list<com::Variant> arguments) const {
    return call(member_id(name), arguments);
}

void DispatchObject::set_property(DISPID member, com::Variant value) const {
    invoke(member, DISPATCH_PROPERTYPUT, {std::move(value)});
}

com::Variant DispatchObject::call(DISPID member, std::initializer_list<com::Variant> arguments) const {
    return invoke(member, DISPATCH_METHOD, arguments);
}

DISPID DispatchObject::member_id(const char16_t* name) const {
    if (!object_) throw RuntimeError(kObjectVariableNotSet);
    const auto known = std::ranges::find(ids_, name, &std::pair<const char16_t*, DISPID>::first);
    if (known != ids_.end()) return known->second;
    DISPID member = DISPID_UNKNOWN;
    auto* ole_name = const_cast<OLECHAR*>(reinterpret_cast<const OLECHAR*>(name));
    if (!com::succeeded(object_->GetIDsOfNames(IID_NULL, &ole_name, 1, LOCALE_USER_DEFAULT, &member))) {
        throw RuntimeError(kMemberNotSupported,
                           std::u16string(u"Object doesn't support this property or method: ") + name);
    }
    ids_.emplace_back(name, member);
    return member;
}

com::Variant DispatchObject::invoke(DISPID member, WORD flags, std::initializer_list<com::Variant> arguments) const {
    if (!object_) throw RuntimeError(kObjectVariableNotSet);
    return com::invoke(*object_, member, flags, arguments);
}

}  // namespace vex::host
