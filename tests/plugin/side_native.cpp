// The native side.
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {

std::filesystem::path plugin_file() {
    return std::filesystem::read_symlink("/proc/self/exe").replace_filename("libvexFirmwarePlugin.so");
}

const char* const kPlatform = "win32";
const bool kAnyFolderIsRegistered = false;

bool is_icon(IDispatch& object) { return com::ComPtr<IDispatch>(&object).query<IPictureDisp>().get() != nullptr; }

}  // namespace vex::plugin_test
