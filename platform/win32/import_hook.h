// Stands between one module and a function that it imports: how the simulated host watches the real system.
#pragma once

#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

/// Replaces an entry of a module's import table while it lives. The module must stay loaded meanwhile.
class ImportHook {
public:
    ImportHook() noexcept = default;
    /// `replacement` has the function's own type and calling convention. Throws RuntimeError, naming the
    /// function, when the module does not import it.
    ImportHook(HMODULE module, const char* function, FARPROC replacement);
    ImportHook(ImportHook&& other) noexcept;
    ImportHook& operator=(ImportHook&& other) noexcept;
    ~ImportHook();

private:
    FARPROC* entry_ = nullptr;
    FARPROC original_ = nullptr;
};

}  // namespace vex::platform::win32
