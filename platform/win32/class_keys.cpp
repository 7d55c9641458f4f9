// The Windows side: the system's calls for wide text.
#include "platform/class_keys.h"

#include "platform/win32/windows_api.h"

namespace vex::platform {

using win32::wide;

bool write_class_text(const std::u16string& key, const std::u16string& name, const std::u16string& text) {
    const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(char16_t));
    return RegSetKeyValueW(HKEY_CLASSES_ROOT, wide(key), wide(name), REG_SZ, text.c_str(), size) == ERROR_SUCCESS;
}

bool remove_class_text(const std::u16string& key, const std::u16string& name) {
    const LSTATUS result = RegDeleteKeyValueW(HKEY_CLASSES_ROOT, wide(key), wide(name));
    return result == ERROR_SUCCESS || result == ERROR_FILE_NOT_FOUND;
}

void remove_empty_class_key(const std::u16string& key) {
    HKEY handle = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, wide(key), 0, KEY_READ, &handle) != ERROR_SUCCESS) return;
    DWORD keys = 0;
    DWORD values = 0;
    const LSTATUS result = RegQueryInfoKeyW(handle, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values,
                                            nullptr, nullptr, nullptr, nullptr);
    RegCloseKey(handle);
    if (result == ERROR_SUCCESS && keys == 0 && values == 0) RegDeleteKeyW(HKEY_CLASSES_ROOT, wide(key));
}

}  // namespace vex::platform
