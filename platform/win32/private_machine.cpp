// A computer of a run's own inside the real one.
#include "platform/win32/private_machine.h"

#include <algorithm>
#include <utility>

#include "core/unicode.h"

namespace vex::platform::win32 {
namespace {

constexpr char16_t kBranches[] = u"Software\\BrivolaSim\\";

/// A key's name for a folder: the folder's path without what a key's name cannot hold.
std::u16string key_of_folder(const std::filesystem::path& folder) {
    std::u16string name = std::filesystem::absolute(folder).u16string();
    std::replace(name.begin(), name.end(), u'\\', u'/');
    return kBranches + name;
}

void check(LSTATUS result, const char16_t* what) {
    if (result != ERROR_SUCCESS) throw RuntimeError(HRESULT_FROM_WIN32(static_cast<DWORD>(result)), what);
}

template <class Function>
FARPROC replacement(Function* function) noexcept {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

}  // namespace

PrivateMachine* PrivateMachine::current_ = nullptr;

PrivateMachine::PrivateMachine(std::filesystem::path folder, bool keep)
    : folder_(std::move(folder)), key_(key_of_folder(folder_)), keep_(keep) {
    redirect(HKEY_LOCAL_MACHINE, L"HKLM");
    redirect(HKEY_CURRENT_USER, L"HKCU");
    current_ = this;
}

PrivateMachine::~PrivateMachine() {
    current_ = nullptr;
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    if (!keep_) RegDeleteTreeW(HKEY_CURRENT_USER, wide(key_));
}

void PrivateMachine::redirect(HKEY root, LPCWSTR branch) {
    HKEY user = nullptr;
    HKEY own = nullptr;
    HKEY key = nullptr;
    // The user's real branch, also after that root has been redirected.
    check(RegOpenCurrentUser(KEY_ALL_ACCESS, &user), u"The user's registry cannot be opened");
    LSTATUS result = RegCreateKeyExW(user, wide(key_), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &own, nullptr);
    if (result == ERROR_SUCCESS) {
        result = RegCreateKeyExW(own, branch, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    }
    if (result == ERROR_SUCCESS) result = RegOverridePredefKey(root, key);
    for (const HKEY opened : {key, own, user}) {
        if (opened != nullptr) RegCloseKey(opened);
    }
    check(result, u"A private registry cannot be made");
}

void PrivateMachine::watch(const std::u16string& module) {
    const HMODULE loaded = GetModuleHandleW(wide(module));
    if (loaded == nullptr) throw last_error(u"The module is not loaded");
    hooks_.emplace_back(loaded, "GetFileAttributesW", replacement(&PrivateMachine::get_file_attributes));
    hooks_.emplace_back(loaded, "CreateProcessW", replacement(&PrivateMachine::create_process));
}

std::filesystem::path PrivateMachine::real_path(const std::u16string& path) const {
    if (path.size() < 2 || path[1] != u':' || path.find(u'\0') != std::u16string::npos) return {};
    const char16_t letter = to_upper(path[0]);
    if (letter < u'A' || letter > u'Z') return {};
    const std::u16string drive = u"drive_" + std::u16string(1, static_cast<char16_t>(letter - u'A' + u'a'));
    return folder_ / (drive + u"\\" + path.substr(2));
}

void PrivateMachine::hide(const std::u16string& path) const {
    const std::filesystem::path file = real_path(path);
    const DWORD attributes = GetFileAttributesW(file.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES) SetFileAttributesW(file.c_str(), attributes | FILE_ATTRIBUTE_HIDDEN);
}

DWORD WINAPI PrivateMachine::get_file_attributes(LPCWSTR path) noexcept {
    const std::filesystem::path file = current_->real_path(reinterpret_cast<const char16_t*>(path));
    return GetFileAttributesW(file.c_str());
}

BOOL WINAPI PrivateMachine::create_process(LPCWSTR program, LPWSTR, SECURITY_ATTRIBUTES*, SECURITY_ATTRIBUTES*, BOOL,
                                           DWORD, void*, LPCWSTR, STARTUPINFOW*,
                                           PROCESS_INFORMATION* information) noexcept {
    const std::u16string path(reinterpret_cast<const char16_t*>(program));
    const DWORD attributes = get_file_attributes(program);
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    *information = {};
    if (current_->on_program_started) current_->on_program_started(path);
    return TRUE;
}

}  // namespace vex::platform::win32
