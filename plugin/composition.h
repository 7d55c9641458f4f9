// What the plug-in takes from its side of the platform. One source per side implements this; the build picks.
#pragma once

#include <string>

#include "platform/pictures.h"
#include "support/services.h"

namespace vex::plugin {

platform::Registry& registry();
platform::Files& files();
platform::Pictures& pictures();
const platform::CodePage& code_page();

/// The full path of the plug-in's own library file.
std::u16string module_path();

/// The calling thread's services, for a module that `module` counts. Raises when the thread has no windowing
/// system.
Services make_services(com::ModuleLifetime& module);

/// What the registry calls the platform of the type library in this library file: win32 or win64.
extern const char* const kTypeLibraryPlatform;

}  // namespace vex::plugin
