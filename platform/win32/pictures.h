// The icons among the resources of the module that this code is linked into: as pictures, and for windows.
#pragma once

#include <cstdint>
#include <string_view>

#include "com/com_ptr.h"
#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

/// A new picture of type icon from the icon resource of that numeric id, in the icon's own size. Raises
/// kResourceNotFound when there is none.
com::ComPtr<IPictureDisp> load_icon(std::int16_t id);

/// The icon resource of that name in the size nearest to the given one in pixels, or none.
OwnedIcon module_icon(std::string_view name, int width, int height);
/// An icon of which nothing is seen.
OwnedIcon empty_icon(int width, int height);

}  // namespace vex::platform::win32
