// Late-bound calls, driven by the contract's tables: names to ids, arguments to the members' types, results
// and errors back.
#pragma once

#include "com/boundary.h"
#include "com/object.h"
#include "platform/type_information.h"
#include "plugin/contract.h"

namespace vex::plugin {

/// IDispatch::GetIDsOfNames: the id of a member and, behind its name, of its parameter, without regard to case.
HRESULT find_ids(const Interface& description, REFIID reserved, LPOLESTR* names, UINT count, DISPID* ids) noexcept;

/// IDispatch::Invoke of `object`, which has the described interface. What by-reference arguments point at must
/// outlive the call.
HRESULT invoke(const Interface& description, IDispatch& object, DISPID member, REFIID reserved, WORD flags,
               const DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception, UINT* argument_error) noexcept;

/// Base of our automation objects: a dual interface, described by the contract. Errors come as error information
/// through the interface itself, and as exceptions through Invoke.
template <class Derived, class DualInterface, const Interface& description>
class AutomationObject : public com::Object<Derived, DualInterface, ISupportErrorInfo> {
public:
    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) noexcept override {
        return IsEqualGUID(iid, description.id) ? S_OK : S_FALSE;
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
                              [info] { *info = platform::load_type_information(description.id).detach(); });
    }

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID /*locale*/,
                                            DISPID* ids) noexcept override {
        return find_ids(description, reserved, names, count, ids);
    }

    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID reserved, LCID /*locale*/, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argument_error) noexcept override {
        return invoke(description, *this, member, reserved, flags, parameters, result, exception, argument_error);
    }

protected:
    using com::Object<Derived, DualInterface, ISupportErrorInfo>::Object;
    ~AutomationObject() = default;
};

}  // namespace vex::plugin
