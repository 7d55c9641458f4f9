// Late-bound calls, driven by the contract's tables.
#include "plugin/dispatch.h"

#include <optional>
#include <string>

#include "core/unicode.h"

namespace vex::plugin {
namespace {

bool same_name(std::string_view name, const OLECHAR* text) noexcept {
    const auto ascii_upper = [](char16_t character) {
        return character >= u'a' && character <= u'z' ? static_cast<char16_t>(character - u'a' + u'A') : character;
    };
    for (const char character : name) {
        if (ascii_upper(static_cast<char16_t>(character)) != ascii_upper(static_cast<char16_t>(*text))) return false;
        ++text;
    }
    return *text == 0;
}

/// The position of the parameter of that name, or nothing.
std::optional<std::size_t> find_parameter(const Member& member, const OLECHAR* name) noexcept {
    for (std::size_t i = 0; i < member.parameters.size(); ++i) {
        if (same_name(member.parameters[i].name, name)) return i;
    }
    return std::nullopt;
}

/// The value itself where an argument is a reference to a whole value, as a caller passes its own variables on.
VARIANT& behind_reference(VARIANT& argument) noexcept {
    return argument.vt == (VT_BYREF | VT_VARIANT) && argument.pvarVal != nullptr ? *argument.pvarVal : argument;
}

/// An argument that stands for one left out.
bool is_missing(VARIANT& argument) noexcept {
    const VARIANT& value = behind_reference(argument);
    return value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND;
}

/// A reference that refers to nothing cannot be read, nor converted.
bool refers_to_nothing(const VARIANT& argument) noexcept {
    return (argument.vt & VT_BYREF) != 0 && argument.byref == nullptr;
}

HRESULT fault_at(UINT index, HRESULT result, UINT* error_index) noexcept {
    if (error_index != nullptr) *error_index = index;
    return result;
}

}  // namespace

HRESULT find_ids(const Interface& description, REFIID reserved, LPOLESTR* names, UINT count, DISPID* ids) noexcept {
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    if (!IsEqualGUID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    for (UINT i = 0; i < count; ++i) {
        if (names[i] == nullptr) return E_INVALIDARG;
    }
    for (const Member& member : description.members) {
        if (!same_name(member.name, names[0])) continue;
        HRESULT result = S_OK;
        ids[0] = member.id;
        for (UINT i = 1; i < count; ++i) {
            const auto position = find_parameter(member, names[i]);
            if (position) {
                ids[i] = static_cast<DISPID>(*position);
            } else {
                result = DISP_E_UNKNOWNNAME;
            }
        }
        return result;
    }
    return DISP_E_UNKNOWNNAME;
}

int find_member(const Interface& description, DISPID id, WORD flags) noexcept {
    for (std::size_t i = 0; i < description.members.size(); ++i) {
        const Member& member = description.members[i];
        const WORD kind = member.kind == MemberKind::method ? DISPATCH_METHOD : DISPATCH_PROPERTYGET;
        if (member.id == id) return (flags & kind) != 0 ? static_cast<int>(i) : -1;
    }
    return -1;
}

VARTYPE variant_type(ValueType type) noexcept {
    switch (type) {
        case ValueType::int16: return VT_I2;
        case ValueType::text: return VT_BSTR;
        case ValueType::boolean: return VT_BOOL;
        case ValueType::object:
        case ValueType::picture: return VT_DISPATCH;
        case ValueType::nothing: break;
    }
    return VT_EMPTY;
}

HRESULT Arguments::take(const Member& member, const DISPPARAMS& parameters, UINT* error_index) {
    const std::size_t expected = member.parameters.size();
    if (parameters.cNamedArgs > parameters.cArgs) return E_INVALIDARG;
    if (expected == 0 && parameters.cNamedArgs != 0) return DISP_E_NONAMEDARGS;
    if (parameters.cArgs > expected) return DISP_E_BADPARAMCOUNT;

    // Where each parameter's argument stands: named ones come first, the others behind them in reverse order.
    std::vector<std::optional<UINT>> places(expected);
    const UINT positional = parameters.cArgs - parameters.cNamedArgs;
    for (UINT i = 0; i < positional; ++i) places[i] = parameters.cArgs - 1 - i;
    for (UINT i = 0; i < parameters.cNamedArgs; ++i) {
        const auto position = static_cast<std::uint32_t>(parameters.rgdispidNamedArgs[i]);
        if (position >= expected || places[position]) return fault_at(i, DISP_E_PARAMNOTFOUND, error_index);
        places[position] = i;
    }

    values_ = std::vector<Value>(expected);
    for (std::size_t i = 0; i < expected; ++i) {
        const Parameter& parameter = member.parameters[i];
        const bool given = places[i] && !is_missing(parameters.rgvarg[*places[i]]);
        if (given) {
            const HRESULT result = convert(parameter, parameters.rgvarg[*places[i]], values_[i]);
            if (FAILED(result)) return fault_at(*places[i], result, error_index);
        } else if (parameter.passing == Passing::optional_by_reference) {
            values_[i].object = &values_[i].value.get().pdispVal;
        } else if (places[i]) {
            return fault_at(*places[i], DISP_E_PARAMNOTOPTIONAL, error_index);
        } else {
            return parameters.cNamedArgs == 0 ? DISP_E_BADPARAMCOUNT : DISP_E_PARAMNOTOPTIONAL;
        }
    }
    return S_OK;
}

HRESULT Arguments::convert(const Parameter& parameter, VARIANT& argument, Value& place) {
    VARIANT& source = behind_reference(argument);
    if (refers_to_nothing(argument) || refers_to_nothing(source)) return DISP_E_TYPEMISMATCH;
    if (parameter.type == ValueType::object) {
        // A reference of the right type goes through, so that the member sees the caller's own variable.
        if (&source != &argument && source.vt == VT_DISPATCH) place.object = &source.pdispVal;
        if (source.vt == (VT_BYREF | VT_DISPATCH)) place.object = source.ppdispVal;
        if (place.object != nullptr) return S_OK;
    }
    const HRESULT result = VariantChangeType(&place.value.get(), &argument, 0, variant_type(parameter.type));
    if (FAILED(result)) return result == DISP_E_OVERFLOW ? result : DISP_E_TYPEMISMATCH;
    if (parameter.type == ValueType::object) place.object = &place.value.get().pdispVal;
    return S_OK;
}

}  // namespace vex::plugin
