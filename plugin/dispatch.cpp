// Late-bound calls, driven by the contract's tables.
#include "plugin/dispatch.h"

#include <algorithm>

#include "com/variant.h"

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

/// The automation type of a value in a VARIANT.
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

/// Takes an argument in the type of its parameter. `converted` holds what the caller's own value would not do for.
HRESULT convert(const Parameter& parameter, VARIANT& given, com::Variant& converted, Argument& argument) {
    VARIANT& source = behind_reference(given);
    if (refers_to_nothing(source)) return DISP_E_TYPEMISMATCH;
    if (parameter.type == ValueType::object) {
        // A reference of the right type goes through, so that the member sees the caller's own variable.
        if (&source != &given && source.vt == VT_DISPATCH) argument.object = &source.pdispVal;
        if (source.vt == (VT_BYREF | VT_DISPATCH)) argument.object = source.ppdispVal;
        if (argument.object != nullptr) return S_OK;
    }
    const HRESULT result = VariantChangeType(&converted.get(), &given, 0, variant_type(parameter.type));
    if (result == DISP_E_OVERFLOW || result == E_OUTOFMEMORY) return result;
    if (FAILED(result)) return DISP_E_TYPEMISMATCH;
    argument = {converted.get().iVal, &converted.get().pdispVal};
    return S_OK;
}

/// Finds the argument of `member` among a call's, where it may be named or missing, and converts it. Answers the
/// standard results; a faulty argument's place is always 0, as there is but one.
HRESULT take(const Member& member, const DISPPARAMS& parameters, com::Variant& converted, Argument& argument,
             UINT* argument_error) {
    const UINT given = parameters.cArgs;
    const UINT named = parameters.cNamedArgs;
    if (named > given || (given > 0 && parameters.rgvarg == nullptr)) return E_INVALIDARG;
    if (named > 0 && parameters.rgdispidNamedArgs == nullptr) return E_INVALIDARG;
    if (member.parameter == nullptr && named > 0) return DISP_E_NONAMEDARGS;
    const bool is_optional = member.parameter == nullptr || member.parameter->passing == Passing::optional_by_reference;
    if (given > (member.parameter == nullptr ? 0U : 1U) || (given == 0 && !is_optional)) return DISP_E_BADPARAMCOUNT;

    HRESULT result = S_OK;
    if (named > 0 && parameters.rgdispidNamedArgs[0] != 0) {
        result = DISP_E_PARAMNOTFOUND;
    } else if (given > 0 && !is_missing(parameters.rgvarg[0])) {
        result = convert(*member.parameter, parameters.rgvarg[0], converted, argument);
    } else if (is_optional) {
        argument.object = &converted.get().pdispVal;
    } else {
        result = DISP_E_PARAMNOTOPTIONAL;
    }
    if (FAILED(result) && argument_error != nullptr) *argument_error = 0;
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
            if (member.parameter != nullptr && same_name(member.parameter->name, names[i])) {
                ids[i] = 0;
            } else {
                result = DISP_E_UNKNOWNNAME;
            }
        }
        return result;
    }
    return DISP_E_UNKNOWNNAME;
}

HRESULT invoke(const Interface& description, IDispatch& object, DISPID member, REFIID reserved, WORD flags,
               const DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception, UINT* argument_error) noexcept {
    if (result != nullptr) VariantInit(result);
    if (!IsEqualGUID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    if (parameters == nullptr) return E_INVALIDARG;
    return guarded_invoke(exception, [&] {
        const auto called = std::ranges::find(description.members, member, &Member::id);
        if (called == description.members.end()) return DISP_E_MEMBERNOTFOUND;
        const WORD kind = called->kind == MemberKind::method ? DISPATCH_METHOD : DISPATCH_PROPERTYGET;
        if ((flags & kind) == 0) return DISP_E_MEMBERNOTFOUND;
        com::Variant converted;
        Argument argument;
        HRESULT outcome = take(*called, *parameters, converted, argument, argument_error);
        if (FAILED(outcome)) return outcome;
        // The caller may release the object while the member runs.
        const com::ComPtr<IDispatch> alive(&object);
        com::Variant value;
        outcome = called->call(object, argument, value.get());
        if (FAILED(outcome)) return exception_from_error_info(outcome, exception);
        value.get().vt = variant_type(called->result);
        if (result != nullptr) *result = value.detach();
        return outcome;
    });
}

}  // namespace vex::plugin
