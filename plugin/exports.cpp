// The four functions that the library exports.
#include "com/boundary.h"
#include "plugin/class_factory.h"
#include "plugin/composition.h"
#include "plugin/module.h"
#include "plugin/registration.h"

namespace {

vex::plugin::Registration registration() {
    using namespace vex::plugin;
    return {registry(), files(), code_page(), module_path(), kTypeLibraryPlatform};
}

}  // namespace

// Declared as the system's headers declare them where there are such; which names leave the library is for the
// linker's list of exports to say.
extern "C" {

HRESULT STDAPICALLTYPE DllCanUnloadNow() { return vex::plugin::module_lifetime().can_unload() ? S_OK : S_FALSE; }

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object) {
    return vex::plugin::get_class_object(clsid, iid, object);
}

HRESULT STDAPICALLTYPE DllRegisterServer() {
    return vex::guarded_method(IID_NULL, [] { return registration().write(); });
}

HRESULT STDAPICALLTYPE DllUnregisterServer() {
    return vex::guarded_method(IID_NULL, [] { return registration().remove(); });
}

}  // extern "C"
