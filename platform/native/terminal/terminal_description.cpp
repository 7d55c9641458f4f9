// What the terminal's description says of it.
#include "platform/native/terminal/terminal_description.h"

#include <unistd.h>

// Their macros have everyday names: nothing else is included with them.
#include <curses.h>
#include <term.h>

namespace vex::platform::native::terminal {

std::string terminal_capability(const char* name) {
    const char* bytes = tigetstr(name);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the library's own word for a name that is no text
    if (bytes == nullptr || bytes == reinterpret_cast<const char*>(-1)) return {};
    return bytes;
}

bool terminal_is_usable() {
    if (isatty(STDIN_FILENO) == 0 || isatty(STDOUT_FILENO) == 0) return false;
    int error = 0;
    if (setupterm(nullptr, STDOUT_FILENO, &error) != OK) return false;
    const bool usable = !terminal_capability("cup").empty();
    del_curterm(cur_term);
    return usable;
}

}  // namespace vex::platform::native::terminal
