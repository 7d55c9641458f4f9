// The four functions that the library exports, and the class factories that they hand out.
#include <vector>

#include "com/object.h"
#include "plugin/module.h"
#include "plugin/plugin_data.h"
#include "plugin/registration.h"
#include "plugin/vex_firm_ware_util.h"
#include "support/boundary.h"

namespace vex::plugin {
namespace {

template <class Product>
class ClassFactory final : public com::Object<ClassFactory<Product>, IClassFactory> {
public:
    ClassFactory() : com::Object<ClassFactory<Product>, IClassFactory>(module_lifetime()) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        return guarded_method(IID_IClassFactory, [&] {
            // The apartment's start-up comes before its first object.
            module_data();
            return com::make_object<Product>()->QueryInterface(iid, object);
        });
    }

    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override {
        if (lock != 0) {
            module_lifetime().add_lock();
        } else {
            module_lifetime().remove_lock();
        }
        return S_OK;
    }
};

HRESULT get_class_object(REFCLSID clsid, REFIID iid, void** object) {
    if (IsEqualGUID(clsid, kPluginDataClass.id)) {
        return com::make_object<ClassFactory<PluginData>>()->QueryInterface(iid, object);
    }
    if (IsEqualGUID(clsid, kFirmWareUtilClass.id)) {
        return com::make_object<ClassFactory<vexFirmWareUtil>>()->QueryInterface(iid, object);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

std::vector<RegistrationEntry> registration() { return registration_entries(module_path(), kTypeLibraryPlatform); }

}  // namespace
}  // namespace vex::plugin

// Declared as the system's headers declare them where there are such; which names leave the library is for the
// linker's list of exports to say.
extern "C" {

HRESULT STDAPICALLTYPE DllCanUnloadNow() { return vex::plugin::module_lifetime().can_unload() ? S_OK : S_FALSE; }

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    return vex::guarded_method(IID_IClassFactory, [&] { return vex::plugin::get_class_object(clsid, iid, object); });
}

HRESULT STDAPICALLTYPE DllRegisterServer() {
    return vex::guarded_method(IID_NULL, [] { return vex::plugin::write_registration(vex::plugin::registration()); });
}

HRESULT STDAPICALLTYPE DllUnregisterServer() {
    return vex::guarded_method(IID_NULL, [] { return vex::plugin::remove_registration(vex::plugin::registration()); });
}

}  // extern "C"
