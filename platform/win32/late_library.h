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
    explicit LateLibrary(const char16_t* name) : module_(load(wide(name))) {
        if (module_ == nullptr) throw last_error(u"A library of the system cannot be loaded");
    }

    /// An exported function. Raises RuntimeError when there is none of that name.
    template <class Function>
    Function* function(const char* name) const {
        if (Function* const found = try_function<Function>(name)) return found;
        throw last_error(u"A function of the system is missing");
    }
    /// The same, or null.
    template <class Function>
    Function* try_function(const char* name) const noexcept {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    }

private:
    /// From the system's folder, or where the active manifest says; never from the host's folder or the current one.
    static HMODULE load(const wchar_t* name) noexcept {
        const HMODULE module = LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
        // Windows 7 before its update KB2533623 does not know the flag. Both libraries are safe there all the same:
        // the system knows the one by its name, and the manifest names the folder of the other.
        return module == nullptr && GetLastError() == ERROR_INVALID_PARAMETER ? LoadLibraryW(name) : module;
    }

    HMODULE module_;
};

}  // namespace vex::platform::win32
