// Late-bound calls, driven by the contract's tables: names to ids, arguments to the members' types, results
// and errors back.
#pragma once

#include <span>
#include <utility>
#include <vector>

#include "com/boundary.h"
#include "com/object.h"
#include "com/variant.h"
#include "platform/type_information.h"
#include "plugin/contract.h"

namespace vex::plugin {

/// The arguments of one call in the types of the member's parameters.
class Arguments {
public:
    /// Of a parameter of type int16.
    SHORT int16(std::size_t index) const noexcept { return values_[index].value.get().iVal; }
    /// Of a parameter of type object: where the object stands, never null.
    IDispatch** object(std::size_t index) const noexcept { return values_[index].object; }

    /// Takes the arguments of `parameters`, named ones and missing optional ones included, for `member`.
    /// Answers the standard results; `error_index`, which may be null, is then the place of the argument at
    /// fault. What by-reference arguments point at must outlive the call.
    HRESULT take(const Member& member, const DISPPARAMS& parameters, UINT* error_index);

private:
    struct Value {
        /// The converted argument, where the caller's own will not do.
        com::Variant value;
        IDispatch** object = nullptr;
    };

    static HRESULT convert(const Parameter& parameter, VARIANT& argument, Value& place);

    std::vector<Value> values_;
};

/// Calls one member; the result goes into the field of `result` that fits the member's result type.
template <class Target>
using MemberCall = HRESULT (*)(Target& target, const Arguments& arguments, VARIANT& result);

/// The id of a member and, behind its name, of its parameters, without regard to case.
HRESULT find_ids(const Interface& description, REFIID reserved, LPOLESTR* names, UINT count, DISPID* ids) noexcept;

/// The position of the member of that id that can be called with `flags` (a set of DISPATCH_...), or -1.
int find_member(const Interface& description, DISPID id, WORD flags) noexcept;

/// The automation type that a result of type `type` has in a VARIANT.
VARTYPE variant_type(ValueType type) noexcept;

/// Base of our automation objects: a dual interface `DualInterface`, described by `description()` of
/// `Derived`, whose members `calls()` calls in the description's order. Errors come as error information
/// through the interface itself, and as exceptions through Invoke.
template <class Derived, class DualInterface>
class AutomationObject : public com::Object<Derived, DualInterface, ISupportErrorInfo> {
public:
    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) noexcept override {
        return IsEqualGUID(iid, Derived::description().id) ? S_OK : S_FALSE;
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override {
        if (count == nullptr) return E_POINTER;
        *count = platform::type_information_count();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** info) noexcept override {
        if (info == nullptr) return E_POINTER;
        *info = nullptr;
        if (index != 0) return DISP_E_BADINDEX;
        return guarded_method(IID_IDispatch,
                              [info] { *info = platform::load_type_information(Derived::description().id).detach(); });
    }

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID /*locale*/,
                                            DISPID* ids) noexcept override {
        return find_ids(Derived::description(), reserved, names, count, ids);
    }

    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID reserved, LCID /*locale*/, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argument_error) noexcept override {
        // The caller may release the object while the member runs.
        const com::ComPtr<DualInterface> alive(this);
        if (result != nullptr) VariantInit(result);
        if (!IsEqualGUID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
        if (parameters == nullptr) return E_INVALIDARG;
        return guarded_invoke(exception, [&] {
            const Interface& description = Derived::description();
            const int position = find_member(description, member, flags);
            if (position < 0) return DISP_E_MEMBERNOTFOUND;
            const Member& called = description.members[static_cast<std::size_t>(position)];
            Arguments arguments;
            HRESULT outcome = arguments.take(called, *parameters, argument_error);
            if (FAILED(outcome)) return outcome;
            com::Variant value;
            outcome = Derived::calls()[static_cast<std::size_t>(position)](*this, arguments, value.get());
            if (FAILED(outcome)) return exception_from_error_info(outcome, exception);
            value.get().vt = variant_type(called.result);
            if (result != nullptr) *result = value.detach();
            return outcome;
        });
    }

protected:
    using com::Object<Derived, DualInterface, ISupportErrorInfo>::Object;
    ~AutomationObject() = default;
};

}  // namespace vex::plugin
