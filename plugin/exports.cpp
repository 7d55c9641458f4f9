// The four functions that the library exports.
#include <vector>

#include "com/boundary.h"
#include "com/class_factory.h"
#include "plugin/module.h"
#include "plugin/plugin_data.h"
#include "plugin/registration.h"
#include "plugin/vex_firm_ware_util.h"

namespace vex::plugin {
namespace {

template <class Product>
HRESULT give_factory(REFIID iid, void** object) {
    const auto make = [] {
        // The apartment's start-up comes before its first object.
        module_data();
        return com::make_object<Product>();
    };
    return com::make_class_factory(module_lifetime(), make)->QueryInterface(iid, object);
}

HRESULT get_class_object(REFCLSID clsid, REFIID iid, void** object) {
    if (IsEqualGUID(clsid, kPluginDataClass.id)) return give_factory<PluginData>(iid, object);
    if (IsEqualGUID(clsid, kFirmWareUtilClass.id)) return give_factory<vexFirmWareUtil>(iid, object);
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
