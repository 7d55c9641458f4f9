// What the terminal's description says of it.
#pragma once

#include <string>

namespace vex::platform::native::terminal {

/// Whether standard input and output are a terminal that can be drawn on.
bool terminal_is_usable();

/// The bytes of a capability by its name, empty where the terminal lacks it. A screen must be in use.
std::string terminal_capability(const char* name);

}  // namespace vex::platform::native::terminal
