// Stands between one module and a function that it imports: how the simulated host watches the real system.
#pragma once

#include <cstring>

#include "core/unicode.h"
#include "platform/win32/windows_api.h"

namespace vex::sim {

/// Replaces an entry of a module's import table while it lives. The module must stay loaded meanwhile.
class ImportHook {
public:
    /// `replacement` has the function's own type and calling convention. Throws RuntimeError, naming the
    /// function, when the module does not import it.
    template <class Function>
    ImportHook(HMODULE module, const char* function, Function* replacement) : entry_(find_import(module, function)) {
        if (entry_ == nullptr) throw RuntimeError(E_FAIL, u"The module does not import " + from_utf8(function));
        original_ = *entry_;
        replace(reinterpret_cast<FARPROC>(reinterpret_cast<void*>(replacement)));
    }
    ImportHook(const ImportHook&) = delete;
    ImportHook& operator=(const ImportHook&) = delete;
    ~ImportHook() { replace(original_); }

private:
    /// What lies at a relative address of a loaded module.
    template <class Content>
    static Content* at(HMODULE module, std::size_t address) noexcept {
        return reinterpret_cast<Content*>(reinterpret_cast<std::uint8_t*>(module) + address);
    }

    static FARPROC* find_import(HMODULE module, const char* function) noexcept {
        const auto* dos = at<IMAGE_DOS_HEADER>(module, 0);
        const auto* headers = at<IMAGE_NT_HEADERS>(module, static_cast<std::size_t>(dos->e_lfanew));
        const IMAGE_DATA_DIRECTORY& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
        if (directory.Size == 0) return nullptr;
        for (auto* library = at<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress); library->Name != 0;
             ++library) {
            const auto* name = at<IMAGE_THUNK_DATA>(module, library->OriginalFirstThunk);
            auto* address = at<IMAGE_THUNK_DATA>(module, library->FirstThunk);
            for (; name->u1.AddressOfData != 0; ++name, ++address) {
                if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
                const auto* import = at<IMAGE_IMPORT_BY_NAME>(module, static_cast<std::size_t>(name->u1.AddressOfData));
                if (std::strcmp(import->Name, function) == 0) return reinterpret_cast<FARPROC*>(&address->u1.Function);
            }
        }
        return nullptr;
    }

    void replace(FARPROC function) noexcept {
        DWORD protection = 0;
        VirtualProtect(entry_, sizeof *entry_, PAGE_READWRITE, &protection);
        *entry_ = function;
        VirtualProtect(entry_, sizeof *entry_, protection, &protection);
    }

    FARPROC* entry_;
    FARPROC original_ = nullptr;
};

/// A function of a loaded library of the system, whatever stands in this module's import table.
template <class Function>
Function* system_function(LPCWSTR library, const char* name) noexcept {
    void* const address = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name));
    return reinterpret_cast<Function*>(address);
}

}  // namespace vex::sim
