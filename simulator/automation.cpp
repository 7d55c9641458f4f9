// Automation objects by table, their events, and calls by name.
#include "simulator/automation.h"

#include <cmath>

#include "com/late_call.h"
#include "core/digits.h"
#include "core/runtime_error.h"
#include "core/unicode.h"
#include "simulator/words.h"

namespace vex::sim {

CallArguments::CallArguments(const DISPPARAMS& parameters, const MemberFacts& member, UINT* wrong)
    : parameters_(parameters), member_(member) {
    const auto count = static_cast<UINT>(std::ranges::find(member.types, VT_EMPTY) - member.types.begin());
    if (parameters.cArgs > count) throw RuntimeError(kWrongArgumentCount);
    for (UINT i = 0; i < count; ++i) {
        const VARTYPE type = member.types.at(i);
        const bool missing = i >= parameters.cArgs;
        if (!missing && at(i).vt == type && ((type & VT_BYREF) == 0 || at(i).byref != nullptr)) continue;
        if (wrong != nullptr) *wrong = missing ? 0 : parameters.cArgs - 1 - i;
        throw RuntimeError(kTypeMismatch, std::u16string(member.name) + u": argument " + decimal_text(i + 1) +
                                              (missing ? u" is missing" : u" is of another type than declared"));
    }
}

std::u16string CallArguments::text(std::size_t index) const {
    const VARIANTARG& given = at(index);
    return std::u16string(com::view(given.vt == kTextReference ? *given.pbstrVal : given.bstrVal));
}

std::u16string CallArguments::shown() const {
    std::u16string line;
    for (std::size_t i = 0; i < parameters_.cArgs; ++i) {
        switch (at(i).vt) {
            case VT_I2: line += u' ' + decimal_text(int16(i)); break;
            case VT_I4: line += u' ' + decimal_text(int32(i)); break;
            // Callers pass whole numbers.
            case VT_R8: line += u' ' + decimal_text(std::lround(real(i))); break;
            case VT_BSTR:
            case kTextReference: line += u' ' + in_quotes(text(i)); break;
            default: break;
        }
    }
    return line;
}

std::u16string CallArguments::shown_call(std::u16string_view object) const {
    const bool puts = member_.kind == kPut;
    std::u16string line = puts ? u"put " : member_.kind == kMethod ? u"call " : u"get ";
    return line.append(object).append(u".").append(member_.name).append(puts ? u" =" : u"") + shown();
}

com::ComPtr<IDispatch> create_object(const std::u16string& programmatic_id) {
    CLSID clsid = GUID_NULL;
    HRESULT result = CLSIDFromProgID(com::ole_text(programmatic_id), &clsid);
    com::ComPtr<IDispatch> object;
    if (SUCCEEDED(result))
        result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.put_void());
    if (FAILED(result)) throw RuntimeError(kCannotCreateObject, programmatic_id + u" cannot be created");
    return object;
}

com::Variant call_late(IDispatch& object, const std::u16string& name, std::initializer_list<com::Variant> arguments,
                       WORD flags) {
    DISPID member = DISPID_UNKNOWN;
    auto* text = const_cast<OLECHAR*>(com::ole_text(name));
    if (FAILED(object.GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &member))) {
        throw RuntimeError(kMemberNotSupported, name + u" is not offered");
    }
    return com::invoke(object, member, flags, arguments);
}

}  // namespace vex::sim
