// The native side.
#include <cstdlib>

#include "platform/native/machine.h"
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {

std::filesystem::path plugin_file() {
    const char* path = std::getenv("VEX_PLUGIN");
    if (path != nullptr) return path;
    return std::filesystem::read_symlink("/proc/self/exe").replace_filename("libvexFirmwarePlugin.so");
}

platform::Registry& registry() { return platform::native::registry(); }

const char* const kPlatform = "win32";
const bool kAnyFolderIsRegistered = false;

}  // namespace vex::plugin_test
