// The Windows side.
#include "platform/win32/windows_api.h"
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {

std::filesystem::path plugin_file() {
    return std::filesystem::path(platform::win32::module_path()).replace_filename("vexFirmwarePlugin.dll");
}

const char* const kPlatform = sizeof(void*) == 8 ? "win64" : "win32";
const bool kAnyFolderIsRegistered = true;

}  // namespace vex::plugin_test
