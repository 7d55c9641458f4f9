// The registration of the classes, the interfaces and the type library: what DllRegisterServer writes and
// DllUnregisterServer removes.
#pragma once

#include <string>
#include <string_view>

#include "com/com.h"
#include "platform/registry.h"

namespace vex::plugin {

/// Works on HKEY_CLASSES_ROOT of one registry. Texts are in the ANSI code page.
class Registration {
public:
    /// `module_path`: the library file's full path; `type_library_platform`: win32 or win64. `registry`
    /// outlives the object.
    Registration(platform::Registry& registry, std::string module_path, std::string type_library_platform);

    /// Writes everything; what stands there already is written again. SELFREG_E_CLASS or SELFREG_E_TYPELIB
    /// when a value of the classes, or of the interfaces and the type library, cannot be written.
    HRESULT write() const;

    /// Removes the values that `write` writes, and the keys that are then empty. Whatever else stands under
    /// those keys stays, and a programmatic identifier that names another class stays whole; the result then
    /// tells where something is left: SELFREG_E_CLASS or SELFREG_E_TYPELIB. S_OK when nothing was there.
    HRESULT remove() const;

private:
    platform::Registry& registry_;
    std::string module_path_;
    std::string type_library_platform_;
};

}  // namespace vex::plugin
