// The Windows side.
#include <cstdlib>

#include "platform/win32/system.h"
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {

std::filesystem::path plugin_file() {
    const wchar_t* path = _wgetenv(L"VEX_PLUGIN");
    if (path != nullptr) return path;
    return std::filesystem::path(platform::win32::module_path()).replace_filename("vexFirmwarePlugin.dll");
}

platform::Registry& registry() { return platform::win32::registry(); }

const char* const kPlatform = sizeof(void*) == 8 ? "win64" : "win32";
const bool kAnyFolderIsRegistered = true;

}  // namespace vex::plugin_test
