// The registration as a table: which values stand in which keys.
#pragma once

#include <string>
#include <vector>

#include "com/com.h"

namespace vex::plugin {

/// A text value below a branch.
struct RegistrationValue {
    /// The key's path below the branch; empty: the branch itself.
    std::string path;
    /// Empty: the key's default value.
    std::string name;
    std::string data;
};

/// A key below HKEY_CLASSES_ROOT that is ours as a whole, with its values.
struct RegistrationBranch {
    std::string key;
    /// What self-registration answers when something of this branch fails.
    HRESULT failure;
    std::vector<RegistrationValue> values;
    /// Set for a branch that another product may have taken over: the path whose default value must still
    /// be the given text, else the branch is not ours any more.
    std::string owner_path;
    std::string owner;
};

/// The keys, below HKEY_CLASSES_ROOT, whose default values name the classes' library file.
std::vector<std::string> server_keys();

/// All branches for the library file `module_path`.
std::vector<RegistrationBranch> registration_branches(const std::string& module_path,
                                                      const std::string& type_library_platform);

}  // namespace vex::plugin
