// The Windows side of the pictures seam.
#pragma once

#include "platform/pictures.h"

namespace vex::platform::win32 {

/// The pictures of the module that this code is linked into. One for the process, without state.
Pictures& pictures();

}  // namespace vex::platform::win32
