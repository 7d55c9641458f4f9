// Automation objects of tests, and factories that offer them.
#pragma once

#include "com/object.h"

namespace vex::test {

/// Base of an object that is called late, without type information; Invoke is the derived class's.
template <class Derived>
class LateObject : public com::Object<Derived, IDispatch> {
public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* ids) noexcept override {
        *ids = 1;
        return S_OK;
    }

protected:
    using com::Object<Derived, IDispatch>::Object;
};

/// Makes what `make` answers, an object by a ComPtr.
template <class Make>
class Factory final : public com::Object<Factory<Make>, IClassFactory> {
public:
    Factory(com::ModuleLifetime& module, Make make) noexcept
        : com::Object<Factory, IClassFactory>(module), make_(make) {}
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override {
        *object = nullptr;
        return outer != nullptr ? CLASS_E_NOAGGREGATION : make_()->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) noexcept override { return S_OK; }

private:
    Make make_;
};

/// Offers a class until the cookie is revoked; 0: it was refused.
template <class Make>
DWORD offer_class(com::ModuleLifetime& module, REFCLSID clsid, Make make) {
    DWORD cookie = 0;
    const auto factory = com::make_object<Factory<Make>>(module, make);
    return SUCCEEDED(CoRegisterClassObject(clsid, factory.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie))
               ? cookie
               : 0;
}

}  // namespace vex::test
