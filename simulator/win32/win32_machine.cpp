// The machine of the Windows side.
#include "simulator/win32/win32_machine.h"

#include <algorithm>
#include <utility>

#include "core/unicode.h"
#include "platform/paths.h"

namespace vex::sim {

using namespace platform::win32;

namespace {

/// A key's name for a folder: the folder's path without what a key's name cannot hold.
std::u16string key_of_folder(const std::filesystem::path& folder) {
    std::u16string name = std::filesystem::absolute(folder).u16string();
    std::replace(name.begin(), name.end(), u'\\', u'/');
    return u"Software\\BrivolaSim\\" + name;
}

OwnedKey make_key(const std::u16string& path) {
    HKEY key = nullptr;
    const LSTATUS result =
        RegCreateKeyExW(HKEY_CURRENT_USER, wide(path), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    if (result == ERROR_SUCCESS) return OwnedKey(key);
    throw RuntimeError(HRESULT_FROM_WIN32(static_cast<DWORD>(result)), u"A private registry cannot be made");
}

}  // namespace

Win32Machine* Win32Machine::current_ = nullptr;

struct Win32Machine::Hooks {
    static void redirect_registry(HMODULE module, std::list<ImportHook>& hooks) {
        hooks.emplace_back(module, "RegOpenKeyExA", &open_key);
        hooks.emplace_back(module, "RegCreateKeyExA", &create_key);
        hooks.emplace_back(module, "RegDeleteKeyA", &delete_key);
    }

    /// The private key in place of the machine's or the user's branch, else the key itself.
    static HKEY own(HKEY key) noexcept {
        if (current_ == nullptr) return key;
        if (key == HKEY_LOCAL_MACHINE) return current_->machine_branch_.get();
        return key == HKEY_CURRENT_USER ? current_->user_branch_.get() : key;
    }

    static LSTATUS WINAPI open_key(HKEY parent, LPCSTR path, DWORD options, REGSAM access, HKEY* key) noexcept {
        static auto* const system_open = system_function<decltype(RegOpenKeyExA)>(L"advapi32.dll", "RegOpenKeyExA");
        return system_open(own(parent), path, options, access, key);
    }

    static LSTATUS WINAPI create_key(HKEY parent, LPCSTR path, DWORD reserved, LPSTR class_name, DWORD options,
                                     REGSAM access, SECURITY_ATTRIBUTES* security, HKEY* key,
                                     DWORD* disposition) noexcept {
        static auto* const system_create =
            system_function<decltype(RegCreateKeyExA)>(L"advapi32.dll", "RegCreateKeyExA");
        return system_create(own(parent), path, reserved, class_name, options, access, security, key, disposition);
    }

    static LSTATUS WINAPI delete_key(HKEY parent, LPCSTR path) noexcept {
        static auto* const system_delete = system_function<decltype(RegDeleteKeyA)>(L"advapi32.dll", "RegDeleteKeyA");
        return system_delete(own(parent), path);
    }

    static DWORD WINAPI get_file_attributes(LPCWSTR path) noexcept {
        return GetFileAttributesW(current_->real_path(reinterpret_cast<const char16_t*>(path)).c_str());
    }

    static BOOL WINAPI create_process(LPCWSTR program, LPWSTR, SECURITY_ATTRIBUTES*, SECURITY_ATTRIBUTES*, BOOL, DWORD,
                                      void*, LPCWSTR, STARTUPINFOW*, PROCESS_INFORMATION* information) noexcept {
        *information = {};
        const DWORD attributes = get_file_attributes(program);
        if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            SetLastError(ERROR_FILE_NOT_FOUND);
            return FALSE;
        }
        current_->program_started_(reinterpret_cast<const char16_t*>(program));
        return TRUE;
    }
};

Win32Machine::Win32Machine(std::u16string module, std::filesystem::path folder, bool keep)
    : module_(std::move(module)),
      folder_(std::move(folder)),
      key_(key_of_folder(folder_)),
      keep_(keep),
      machine_branch_(make_key(key_ + u"\\HKLM")),
      user_branch_(make_key(key_ + u"\\HKCU")) {
    Hooks::redirect_registry(module_instance(), redirected_);
    current_ = this;
}

Win32Machine::~Win32Machine() {
    current_ = nullptr;
    if (!keep_) RegDeleteTreeW(HKEY_CURRENT_USER, wide(key_));
}

void Win32Machine::on_program_started(std::function<void(const std::u16string&)> listener) {
    watched_.clear();
    program_started_ = std::move(listener);
    if (!program_started_) return;
    const HMODULE loaded = GetModuleHandleW(wide(module_));
    if (loaded == nullptr) throw last_error(u"The module is not loaded");
    Hooks::redirect_registry(loaded, watched_);
    watched_.emplace_back(loaded, "GetFileAttributesW", &Hooks::get_file_attributes);
    watched_.emplace_back(loaded, "CreateProcessW", &Hooks::create_process);
}

std::filesystem::path Win32Machine::real_path(const std::u16string& path) {
    if (path.size() < 2 || path[1] != u':' || path.find(u'\0') != std::u16string::npos) return {};
    const char16_t letter = to_upper(path[0]);
    if (letter < u'A' || letter > u'Z') return {};
    const std::u16string drive = u"drive_" + std::u16string(1, static_cast<char16_t>(letter - u'A' + u'a'));
    std::filesystem::path file = folder_ / drive;
    // Name by name: a path that climbs above its drive's root must not leave the folder.
    for (const std::u16string& name : platform::path_names(std::u16string_view(path).substr(2))) file /= name;
    std::error_code unknown;
    const bool real = real_disks_ && !std::filesystem::exists(file, unknown) && std::filesystem::exists(path, unknown);
    return real ? std::filesystem::path(path) : file;
}

void Win32Machine::hide(const std::u16string& path) {
    const std::filesystem::path file = real_path(path);
    SetFileAttributesW(file.c_str(), GetFileAttributesW(file.c_str()) | FILE_ATTRIBUTE_HIDDEN);
}

}  // namespace vex::sim
