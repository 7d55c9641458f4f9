// The class factory, and classes offered to the process by it.
#pragma once

#include <utility>

#include "com/boundary.h"
#include "com/object.h"

namespace vex::com {

/// Makes what `make` answers, an object by a ComPtr. What `make` throws comes as error information.
template <class Make>
class ClassFactory final : public Object<ClassFactory<Make>, IClassFactory> {
public:
    ClassFactory(ModuleLifetime& module, Make make)
        : Object<ClassFactory, IClassFactory>(module), make_(std::move(make)) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        return guarded_method(IID_IClassFactory, [&] { return make_()->QueryInterface(iid, object); });
    }

    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override {
        if (lock != FALSE) {
            this->module().add_lock();
        } else {
            this->module().remove_lock();
        }
        return S_OK;
    }

private:
    Make make_;
};

template <class Make>
ComPtr<IClassFactory> make_class_factory(ModuleLifetime& module, Make make) {
    return ComPtr<IClassFactory>::adopt(make_object<ClassFactory<Make>>(module, std::move(make)).detach());
}

/// Offers a class to the calling apartment until the answered cookie is revoked. Raises the system's refusal.
template <class Make>
DWORD offer_class(ModuleLifetime& module, REFCLSID clsid, Make make) {
    DWORD cookie{};
    const HRESULT result = CoRegisterClassObject(clsid, make_class_factory(module, std::move(make)).get(),
                                                 CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie);
    if (FAILED(result)) throw RuntimeError(result, u"A class is refused");
    return cookie;
}

}  // namespace vex::com
