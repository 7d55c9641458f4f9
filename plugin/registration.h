// The registration of the classes, the interfaces and the type library: what DllRegisterServer writes and
// DllUnregisterServer removes.
#pragma once

#include <string>
#include <vector>

#include "com/com.h"

namespace vex::plugin {

/// A text value in a key below HKEY_CLASSES_ROOT.
struct RegistrationEntry {
    /// The key below which everything is ours; empty: HKEY_CLASSES_ROOT itself.
    std::u16string shared_key;
    std::u16string key;
    /// Empty: the key's default value.
    std::u16string name;
    std::u16string text;
    /// What self-registration answers when this entry fails.
    HRESULT failure;
};

/// The whole registration. `module_path`: the library file's full path; `type_library_platform`: win32 or win64.
std::vector<RegistrationEntry> registration_entries(const std::u16string& module_path,
                                                    const std::u16string& type_library_platform);

/// Writes the entries; what stands there already is written again. On failure takes back what it wrote, which needs no
/// memory, and answers the failed entry's result.
HRESULT write_registration(std::vector<RegistrationEntry> entries);

/// Removes the entries, whatever their text has become, and then those of their keys that are empty: what others put
/// there stays. An entry that is not there is no failure; of those that cannot be removed, the first one's result is
/// answered, after removing the others.
HRESULT remove_registration(std::vector<RegistrationEntry> entries);

}  // namespace vex::plugin
