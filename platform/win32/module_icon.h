// Icons among the resources of the module.
#pragma once

#include <string_view>

#include "platform/win32/handles.h"

namespace vex::platform::win32 {

/// The icon resource of that name in the size nearest to the given one in pixels, or none.
OwnedIcon module_icon(std::string_view name, int width, int height);
/// An icon of which nothing is seen.
OwnedIcon empty_icon(int width, int height);

}  // namespace vex::platform::win32
