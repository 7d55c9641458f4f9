// What a console program needs of the system to be the same program on every system.
#pragma once

#include <string>
#include <vector>

namespace vex::platform::win32 {

/// The program's arguments, without its name, in UTF-8.
std::vector<std::string> program_arguments();

/// Standard input and output carry the bytes that the program reads and writes; a console shows UTF-8.
void use_plain_streams() noexcept;

}  // namespace vex::platform::win32
