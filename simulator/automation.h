// Automation objects by table: members with names, dispatch ids and argument types behind IDispatch.
#pragma once

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <string_view>

#include "com/boundary.h"
#include "com/object.h"
#include "com/variant.h"

namespace vex::sim {

constexpr DISPID dispatch_id(std::uint32_t id) noexcept { return static_cast<DISPID>(id); }

inline constexpr std::size_t kMostArguments = 3;
/// The argument types of a member, in the order in which they are written; VT_EMPTY ends them.
using ArgumentTypes = std::array<VARTYPE, kMostArguments>;

/// The arguments of one call, converted to the member's types, in the order in which they are written.
class Arguments {
public:
    /// Follows references and converts. Raises the automation error that a caller of a wrong number or type
    /// of arguments gets.
    Arguments(const DISPPARAMS& parameters, const ArgumentTypes& types);

    std::u16string text(std::size_t index) const { return std::u16string(com::view(values_.at(index).get().bstrVal)); }
    std::int16_t int16(std::size_t index) const { return values_.at(index).get().iVal; }
    std::int32_t int32(std::size_t index) const { return values_.at(index).get().lVal; }
    double real(std::size_t index) const { return values_.at(index).get().dblVal; }
    IDispatch* object(std::size_t index) const { return values_.at(index).get().pdispVal; }

private:
    std::array<com::Variant, kMostArguments> values_;
};

/// A member of the automation class `Object`.
template <class Object>
struct Member {
    std::u16string_view name;
    DISPID id;
    /// DISPATCH_METHOD, DISPATCH_PROPERTYGET or DISPATCH_PROPERTYPUT.
    WORD kind;
    com::Variant (*call)(Object& object, const Arguments& arguments);
    ArgumentTypes types = {};
};

bool is_name(LPCOLESTR text, std::u16string_view name);
/// Names the simulated host as the source of the error.
void set_error_source(EXCEPINFO* exception) noexcept;

/// Base of the host's automation objects: `Derived::members()` answers their table. The interface named first
/// derives from IDispatch and adds no methods.
template <class Derived, class First, class... More>
class AutomationObject : public com::Object<Derived, com::Untyped<First>, More...> {
public:
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT count, LCID /*locale*/,
                                            DISPID* ids) noexcept override {
        if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
        // Only the member's name: parameters are not named here.
        std::fill_n(ids, count, DISPID_UNKNOWN);
        for (const Member<Derived>& member : Derived::members()) {
            if (is_name(names[0], member.name)) ids[0] = member.id;
        }
        return ids[0] == DISPID_UNKNOWN || count > 1 ? DISP_E_UNKNOWNNAME : S_OK;
    }

    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID reserved, LCID /*locale*/, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception,
                                     UINT* /*argument_error*/) noexcept override {
        if (result != nullptr) VariantInit(result);
        if (!IsEqualGUID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
        if (parameters == nullptr) return E_INVALIDARG;
        const auto members = Derived::members();
        const auto member = std::find_if(members.begin(), members.end(), [id, flags](const Member<Derived>& candidate) {
            return candidate.id == id && (candidate.kind & flags) != 0;
        });
        if (member == members.end()) return DISP_E_MEMBERNOTFOUND;
        // Called back in the middle of a call, the object may lose its last other reference.
        const com::ComPtr<Derived> alive(static_cast<Derived*>(this));
        const HRESULT outcome = guarded_invoke(exception, [&] {
            com::Variant value = member->call(*alive, Arguments(*parameters, member->types));
            if (result != nullptr) *result = value.detach();
        });
        if (outcome == DISP_E_EXCEPTION) set_error_source(exception);
        return outcome;
    }

protected:
    using com::Object<Derived, com::Untyped<First>, More...>::Object;
};

}  // namespace vex::sim
