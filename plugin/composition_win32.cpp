// The Windows side: the system itself.
#include "plugin/composition.h"

#include "platform/win32/pictures.h"
#include "platform/win32/system.h"
#include "support/text.h"

namespace vex::plugin {

platform::Registry& registry() { return platform::win32::registry(); }

platform::Files& files() { return platform::win32::files(); }

platform::Pictures& pictures() { return platform::win32::pictures(); }

const platform::CodePage& code_page() { return platform::win32::code_page(); }

std::u16string module_path() { return platform::win32::module_path(); }

Services make_services(com::ModuleLifetime& module) {
    return {.toolkit = platform::win32::desktop(),
            .registry = registry(),
            .files = files(),
            .processes = platform::win32::processes(),
            .code_page = code_page(),
            .module = module,
            .module_folder = GetPathOnly(module_path())};
}

const char* const kTypeLibraryPlatform = sizeof(void*) == 8 ? "win64" : "win32";

}  // namespace vex::plugin
