// An automation object of the host, called late: by member name or by dispatch id.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "com/variant.h"

namespace vex::host {

/// Creates an object by class id / by programmatic identifier. Raises 429 with the name when it cannot.
com::ComPtr<IDispatch> create_object(REFCLSID clsid, const char16_t* name);
com::ComPtr<IDispatch> create_object(const char16_t* programmatic_id);

/// Automation conversions of a result. Raise 13 or 6 when the value does not convert.
bool to_boolean(const com::Variant& value);
std::int16_t to_int16(const com::Variant& value);
std::int32_t to_int32(const com::Variant& value);
std::u16string to_text(const com::Variant& value);
com::ComPtr<IDispatch> to_object(const com::Variant& value);

/// Owns a reference to an automation object. Calls raise the error that the object raised, or the
/// automation error number of the result code, or the result code itself where it has no number. Member names
/// are string literals.
class DispatchObject {
public:
    explicit DispatchObject(com::ComPtr<IDispatch> object) noexcept : object_(std::move(object)) {}

    IDispatch* get() const noexcept { return object_.get(); }

    com::Variant property(const char16_t* name) const;
    void set_property(const char16_t* name, com::Variant value) const;
    com::Variant call(const char16_t* name, std::initializer_list<com::Variant> arguments = {}) const;

    void set_property(DISPID member, com::Variant value) const;
    com::Variant call(DISPID member, std::initializer_list<com::Variant> arguments = {}) const;

private:
    DISPID member_id(const char16_t* name) const;
    com::Variant invoke(DISPID member, WORD flags, std::initializer_list<com::Variant> arguments) const;

    /// The ids of names asked for so far; an object's ids do not change while it lives. Names are literals
    /// and told apart by their address.
    mutable std::vector<std::pair<const char16_t*, DISPID>> ids_;
    com::ComPtr<IDispatch> object_;
};

}  // namespace vex::host
