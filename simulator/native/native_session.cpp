// The native program's composition.
#include "simulator/native/native_session.h"

#include "com/com.h"
#include "platform/native/machine.h"

namespace vex::sim {

namespace native = platform::native;

std::filesystem::path NativeMachine::real_path(const std::u16string& path) { return native::real_path(path); }

void NativeMachine::hide(const std::u16string& path) { native::hide(path); }

void NativeMachine::on_program_started(std::function<void(const std::u16string&)> listener) {
    native::on_program_started(std::move(listener));
}

const std::filesystem::path& NativeMachine::drives() const { return native::machine_folder(); }

NativeSession::NativeSession(const CommandLine& options)
    : Session(options, std::filesystem::read_symlink("/proc/self/exe").parent_path(), "libvexFirmwarePlugin.so") {
    native::use_machine_folder(data());
    native::set_desktop(&screen_.toolkit());
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
}

NativeSession::~NativeSession() {
    CoUninitialize();
    native::set_desktop(nullptr);
}

void NativeSession::prepare(std::ostream& out) {
    if (options().pictures) screen_.on_look = pictures(out);
}

}  // namespace vex::sim
