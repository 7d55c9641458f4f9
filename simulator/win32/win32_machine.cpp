// The machine of the Windows side.
#include "simulator/win32/win32_machine.h"

#include <stdexcept>

#include "core/unicode.h"
#include "platform/win32/system.h"

namespace vex::sim {

platform::Registry& Win32Machine::registry() { return platform::win32::registry(); }

const platform::CodePage& Win32Machine::code_page() { return platform::win32::code_page(); }

std::filesystem::path Win32Machine::writable_path(const std::u16string& path) {
    // Z: is the real disk on the other side, and no scenario may depend on the side.
    const char16_t drive = path.empty() ? u'\0' : to_upper(path.front());
    if (path.size() < 4 || drive < u'A' || drive >= u'Z' || path[1] != u':' || path[2] != u'\\') {
        throw std::invalid_argument("\"" + to_utf8(path) + "\" is no path on a drive of A: to Y:");
    }
    std::filesystem::create_directories(real_path(path.substr(0, 3)));
    return real_path(path);
}

void Win32Machine::on_program_started(std::function<void(const std::u16string&)> listener) {
    machine_.unwatch();
    machine_.on_program_started = std::move(listener);
    if (machine_.on_program_started) machine_.watch(module_);
}

}  // namespace vex::sim
