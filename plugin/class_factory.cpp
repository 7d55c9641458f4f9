// The class factories.
#include "plugin/class_factory.h"

#include "com/object.h"
#include "plugin/contract.h"
#include "plugin/module.h"
#include "plugin/plugin_data.h"
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

}  // namespace

HRESULT get_class_object(REFCLSID clsid, REFIID iid, void** object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    return guarded_method(IID_IClassFactory, [&]() -> HRESULT {
        if (IsEqualGUID(clsid, kPluginDataClass.id)) {
            return com::make_object<ClassFactory<PluginData>>()->QueryInterface(iid, object);
        }
        if (IsEqualGUID(clsid, kFirmWareUtilClass.id)) {
            return com::make_object<ClassFactory<vexFirmWareUtil>>()->QueryInterface(iid, object);
        }
        return CLASS_E_CLASSNOTAVAILABLE;
    });
}

}  // namespace vex::plugin
