// The Windows side of the small seams: the system itself.
#include "platform/system.h"

#include <limits>

#include "platform/paths.h"
#include "platform/win32/windows_api.h"

namespace vex::platform {
namespace {

using win32::wide;

int checked_length(std::size_t length) {
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max())) throw RuntimeError(kOutOfMemory);
    return static_cast<int>(length);
}

/// A character that the page lacks becomes "?", which no path can hold. One that only looks like it, such as a
/// full-width backslash's plain one, would make another path of it.
DWORD exact_only() noexcept { return GetACP() == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS; }

}  // namespace

std::string to_ansi(std::u16string_view text) {
    const int length = checked_length(text.size());
    if (length == 0) return {};
    const auto* source = reinterpret_cast<LPCWSTR>(text.data());
    const int size = WideCharToMultiByte(CP_ACP, exact_only(), source, length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, exact_only(), source, length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

std::u16string from_ansi(std::string_view bytes) {
    const int size = checked_length(bytes.size());
    if (size == 0) return {};
    const int length = MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, nullptr, 0);
    std::u16string text(static_cast<std::size_t>(length), u'\0');
    MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, wide(text), length);
    return text;
}

bool ordinary_file_exists(const std::u16string& path) {
    constexpr DWORD kExtraordinary = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    if (!is_full_path(path)) return false;
    const DWORD attributes = GetFileAttributesW(wide(path));
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & kExtraordinary) == 0;
}

bool start_program(const std::u16string& path) {
    // The system would complete any other from the current folder, and end one early at a null.
    if (!is_full_path(path)) return false;
    // The program is named by its path alone, so that no part of a path with blanks is ever tried as a
    // program, and neither the current folder nor the search path is looked through for it.
    std::u16string command_line = u"\"" + path + u"\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_SHOWNORMAL;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(wide(path), wide(command_line), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
        return false;
    }
    AllowSetForegroundWindow(process.dwProcessId);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return true;
}

namespace win32 {

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

}  // namespace win32
}  // namespace vex::platform
