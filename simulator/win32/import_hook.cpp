#include "simulator/win32/import_hook.h"

#include <cstring>
#include <utility>

#include "core/unicode.h"

namespace vex::sim {

using namespace platform::win32;

namespace {

/// What lies at a relative address of a loaded module.
template <class Content>
Content* at(HMODULE module, std::size_t address) noexcept {
    return reinterpret_cast<Content*>(reinterpret_cast<std::uint8_t*>(module) + address);
}

FARPROC* find_import(HMODULE module, const char* function) noexcept {
    const auto* dos = at<IMAGE_DOS_HEADER>(module, 0);
    const auto* headers = at<IMAGE_NT_HEADERS>(module, static_cast<std::size_t>(dos->e_lfanew));
    const IMAGE_DATA_DIRECTORY& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (directory.Size == 0) return nullptr;
    for (auto* library = at<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress); library->Name != 0; ++library) {
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

void replace(FARPROC* entry, FARPROC function) noexcept {
    DWORD protection = 0;
    VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &protection);
    *entry = function;
    VirtualProtect(entry, sizeof *entry, protection, &protection);
}

}  // namespace

ImportHook::ImportHook(HMODULE module, const char* function, FARPROC replacement)
    : entry_(find_import(module, function)) {
    if (entry_ == nullptr) throw RuntimeError(E_FAIL, u"The module does not import " + from_utf8(function));
    original_ = *entry_;
    replace(entry_, replacement);
}

ImportHook::ImportHook(ImportHook&& other) noexcept
    : entry_(std::exchange(other.entry_, nullptr)), original_(other.original_) {}

ImportHook& ImportHook::operator=(ImportHook&& other) noexcept {
    std::swap(entry_, other.entry_);
    std::swap(original_, other.original_);
    return *this;
}

ImportHook::~ImportHook() {
    if (entry_ != nullptr) replace(entry_, original_);
}

}  // namespace vex::sim
