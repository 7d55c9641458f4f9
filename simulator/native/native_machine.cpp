// The simulated machine of the native side, as the simulated host needs it.
#include "simulator/native/native_machine.h"

#include <stdexcept>

#include "core/unicode.h"
#include "platform/native/machine.h"
#include "platform/private_files.h"

namespace vex::sim {
namespace {

/// The real root folder, which a scenario may read and must not write.
constexpr char16_t kRealDrive = u'Z';

}  // namespace

platform::Registry& NativeMachine::registry() { return platform::native::registry(); }

const platform::CodePage& NativeMachine::code_page() { return platform::native::code_page(); }

std::filesystem::path NativeMachine::real_path(const std::u16string& path) {
    return platform::native::real_path(path);
}

std::filesystem::path NativeMachine::writable_path(const std::u16string& path) {
    const char16_t drive = path.empty() ? u'\0' : to_upper(path.front());
    if (path.size() < 4 || drive < u'A' || drive >= kRealDrive || path[1] != u':' || path[2] != u'\\') {
        throw std::invalid_argument("\"" + to_utf8(path) + "\" is no path on a drive of A: to Y:");
    }
    const char letter = static_cast<char>(drive - u'A' + 'a');
    platform::make_private_folder(platform::native::machine_folder() / (std::string("drive_") + letter));
    return real_path(path);
}

void NativeMachine::hide(const std::u16string& path) { platform::native::set_hidden(path, true); }

void NativeMachine::on_program_started(std::function<void(const std::u16string&)> listener) {
    platform::native::on_program_started(std::move(listener));
}

}  // namespace vex::sim
