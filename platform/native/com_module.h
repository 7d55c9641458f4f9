// Where a module of the native process lies on the simulated computer.
#pragma once

#include <string>

#include "platform/native/machine.h"

namespace vex::platform::native {

/// The drive-letter path of the library or program that `address` (of a function or a constant) lies in.
/// Raises kCannotCreateObject when it lies in none.
VEX_RUNTIME_API std::u16string module_path(const void* address);

}  // namespace vex::platform::native
