// Pictures of the native runtime: what OLE makes of an icon, as far as hosts read it.
#pragma once

#include <cstdint>
#include <span>

#include "com/com_ptr.h"
#include "platform/native/machine.h"

namespace vex::platform::native {

/// A picture of type icon from the content of an icon file, in the size of its first image. The content is
/// read only during the call. Raises kResourceNotFound when it is no icon file.
VEX_RUNTIME_API com::ComPtr<IPictureDisp> create_icon_picture(std::span<const std::uint8_t> icon_file);

}  // namespace vex::platform::native
