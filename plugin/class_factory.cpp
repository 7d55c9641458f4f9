// The class factories.
#include "plugin/class_factory.h"

#include "com/class_factory.h"
#include "plugin/contract.h"
#include "plugin/module.h"
#include "plugin/plugin_data.h"
#include "plugin/vex_firm_ware_util.h"

namespace vex::plugin {
namespace {

template <class Product>
com::ComPtr<Product> make_product() {
    // The apartment's start-up comes before its first object.
    module_data();
    return com::make_object<Product>();
}

template <class Product>
HRESULT give_factory(REFIID iid, void** object) {
    return com::make_class_factory(module_lifetime(), &make_product<Product>)->QueryInterface(iid, object);
}

}  // namespace

HRESULT get_class_object(REFCLSID clsid, REFIID iid, void** object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    return guarded_method(IID_IClassFactory, [&]() -> HRESULT {
        if (IsEqualGUID(clsid, kPluginDataClass.id)) return give_factory<PluginData>(iid, object);
        if (IsEqualGUID(clsid, kFirmWareUtilClass.id)) return give_factory<vexFirmWareUtil>(iid, object);
        return CLASS_E_CLASSNOTAVAILABLE;
    });
}

}  // namespace vex::plugin
