// What the native runtime gives in-process servers beside COM: their own place, and pictures.
#pragma once

#include <string>

#include "com/com_ptr.h"

namespace vex::com::native {

#pragma GCC visibility push(default)

/// The drive-letter path of the library or program that `address` (of a function or a constant) lies in.
/// Raises kCannotCreateObject when it lies in none.
std::u16string module_path(const void* address);

/// A picture, which nobody can look at here.
ComPtr<IPictureDisp> create_picture();

#pragma GCC visibility pop

}  // namespace vex::com::native
