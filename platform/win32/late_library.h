// Libraries of the system that only the dialogs need.
#pragma once

#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

/// Loads a library of the system when it is wanted and not together with this module: a host that only lists what
/// the module contributes, or registers it, would wait for the dialogs' libraries much longer than for the module.
/// Stays loaded, as the module may be unloaded under the loader's lock, when no other library may be freed.
class LateLibrary {
public:
    /// Raises RuntimeError when there is no such library.
    explicit LateLibrary(const char16_t* name) : module_(LoadLibraryW(wide(name))) {
        if (module_ == nullptr) throw last_error(u"A library of the system cannot be loaded");
    }

    /// An exported function. Raises RuntimeError when there is none of that name.
    template <class Function>
    Function* function(const char* name) const {
        const FARPROC address = GetProcAddress(module_, name);
        if (address == nullptr) throw last_error(u"A function of the system is missing");
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
    }

private:
    HMODULE module_;
};

}  // namespace vex::platform::win32
