// The native side.
#include <thread>

#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {

std::filesystem::path plugin_file() {
    return std::filesystem::read_symlink("/proc/self/exe").replace_filename("libvexFirmwarePlugin.so");
}

const char* const kPlatform = "win32";
const bool kAnyFolderIsRegistered = false;

void call_from_other_apartments(const std::function<void(const Create& create)>& use) {
    // Objects never change threads here: another thread makes its own.
    std::thread([&use] {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        use(create_registered);
        CoUninitialize();
    }).join();
}

com::ComPtr<IDispatch> as_described(const com::ComPtr<IDispatch>& object) { return object; }

bool is_icon(IDispatch& object) { return com::ComPtr<IDispatch>(&object).query<IPictureDisp>().get() != nullptr; }

}  // namespace vex::plugin_test
