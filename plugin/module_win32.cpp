// The Windows side: the system itself.
#include "platform/win32/pictures.h"
#include "platform/win32/system.h"
#include "plugin/module.h"
#include "support/file_routines.h"

namespace vex::plugin {

com::ComPtr<IPictureDisp> load_icon(std::int16_t id) { return platform::win32::pictures().load_icon(id); }

std::u16string module_path() { return platform::win32::module_path(); }

Services make_services() {
    return {.toolkit = platform::win32::desktop(),
            .registry = platform::win32::registry(),
            .files = platform::win32::files(),
            .processes = platform::win32::processes(),
            .code_page = platform::win32::code_page(),
            .module = module_lifetime(),
            .module_folder = GetPathOnly(module_path())};
}

const char16_t* const kTypeLibraryPlatform = sizeof(void*) == 8 ? u"win64" : u"win32";

}  // namespace vex::plugin
