// Stands between one module and a function that it imports: how the simulated host watches the real system.
#pragma once

#include "platform/win32/windows_api.h"

namespace vex::sim {

/// Replaces an entry of a module's import table while it lives. The module must stay loaded meanwhile.
class ImportHook {
public:
    /// `replacement` has the function's own type and calling convention. Throws RuntimeError, naming the
    /// function, when the module does not import it.
    template <class Function>
    ImportHook(HMODULE module, const char* function, Function* replacement)
        : ImportHook(module, function, reinterpret_cast<FARPROC>(reinterpret_cast<void*>(replacement))) {}
    ImportHook(HMODULE module, const char* function, FARPROC replacement);
    ImportHook(ImportHook&& other) noexcept;
    ImportHook& operator=(ImportHook&& other) noexcept;
    ~ImportHook();

private:
    FARPROC* entry_ = nullptr;
    FARPROC original_ = nullptr;
};

/// A function of a loaded library of the system, whatever stands in this module's import table.
template <class Function>
Function* system_function(LPCWSTR library, const char* name) noexcept {
    void* const address = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name));
    return reinterpret_cast<Function*>(address);
}

}  // namespace vex::sim
