// The registration of the classes, the interfaces and the type library: what DllRegisterServer writes and
// DllUnregisterServer removes.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "com/com.h"
#include "platform/code_page.h"
#include "platform/files.h"
#include "platform/registry.h"
#include "plugin/registration_entries.h"

namespace vex::plugin {

/// Works on HKEY_CLASSES_ROOT of one registry.
class Registration {
public:
    /// `module_path`: the library file's full path; `type_library_platform`: win32 or win64. The seams outlive
    /// the object.
    Registration(platform::Registry& registry, platform::Files& files, const platform::CodePage& code_page,
                 std::u16string module_path, std::string type_library_platform)
        : registry_(registry),
          files_(files),
          code_page_(code_page),
          module_path_(std::move(module_path)),
          type_library_platform_(std::move(type_library_platform)) {}

    /// Writes everything; what stands there already is written again. SELFREG_E_CLASS or SELFREG_E_TYPELIB
    /// when a value of the classes, or of the interfaces and the type library, cannot be written.
    HRESULT write() const;

    /// Removes the values that `write` writes, and the keys that are then empty. Whatever else stands under
    /// those keys stays, and a programmatic identifier that names another class stays whole; the result then
    /// tells where something is left: SELFREG_E_CLASS or SELFREG_E_TYPELIB. S_OK when nothing was there.
    ///
    /// While a class is registered for another file that exists, nothing is removed (SELFREG_E_CLASS): an older
    /// copy that is cleared away does not take the newer one's registration along. A file that is gone, as after
    /// the library has been moved, keeps nothing.
    HRESULT remove() const;

private:
    std::vector<RegistrationBranch> branches() const;
    bool belongs_to_another_copy() const;

    platform::Registry& registry_;
    platform::Files& files_;
    const platform::CodePage& code_page_;
    std::u16string module_path_;
    std::string type_library_platform_;
};

}  // namespace vex::plugin
