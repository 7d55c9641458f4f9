// The module that this code lives in, and errors of the system.
#include "platform/win32/system.h"

#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

HINSTANCE module_instance() noexcept {
    static constexpr char kAnchor = 0;
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&kAnchor), &module);
    return module;
}

RuntimeError last_error(const char16_t* what) {
    const DWORD code = GetLastError();
    return RuntimeError(code == 0 ? E_FAIL : HRESULT_FROM_WIN32(code), what);
}

std::u16string module_path() {
    std::u16string path(MAX_PATH, u'\0');
    for (;;) {
        const auto room = static_cast<DWORD>(path.size());
        const DWORD length = GetModuleFileNameW(module_instance(), wide(path), room);
        if (length == 0) throw last_error(u"The module's path is unknown");
        path.resize(length < room ? length : path.size() * 2);
        if (length < room) return path;
    }
}

}  // namespace vex::platform::win32
