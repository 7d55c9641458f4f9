// The icons among the module's resources: the Windows side of the pictures seam, and icons for windows.
#pragma once

#include <string_view>

#include "platform/pictures.h"
#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

/// The pictures of the module that this code is linked into. One for the process, without state.
Pictures& pictures();

/// The icon resource of that name in the size nearest to the given one in pixels, or none.
OwnedIcon module_icon(std::string_view name, int width, int height);
/// An icon of which nothing is seen.
OwnedIcon empty_icon(int width, int height);

}  // namespace vex::platform::win32
