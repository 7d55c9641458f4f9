// The native program's composition.
#include "simulator/native/native_session.h"

#include "com/com.h"
#include "platform/native/machine.h"

namespace vex::sim {

NativeSession::NativeSession(const CommandLine& options)
    : Session(options, std::filesystem::read_symlink("/proc/self/exe").parent_path(), "libvexFirmwarePlugin.so") {
    platform::native::use_machine_folder(data());
    platform::native::set_desktop(&screen_.toolkit());
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
}

NativeSession::~NativeSession() {
    CoUninitialize();
    platform::native::set_desktop(nullptr);
}

void NativeSession::prepare(std::ostream& out) {
    if (options().pictures) screen_.set_onlooker(&pictures_.emplace(out));
}

}  // namespace vex::sim
