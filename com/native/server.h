// What the native runtime gives in-process servers beside COM: their own place, and pictures.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "com/com_ptr.h"

namespace vex::com::native {

#pragma GCC visibility push(default)

/// The drive-letter path of the library or program that `address` (of a function or a constant) lies in.
/// Raises kCannotCreateObject when it lies in none.
std::u16string module_path(const void* address);

/// A picture of type icon from the content of an icon file, in the size of its first image. The content is
/// read only during the call. Raises kResourceNotFound when it is no icon file.
ComPtr<IPictureDisp> create_icon_picture(std::span<const std::uint8_t> icon_file);

#pragma GCC visibility pop

}  // namespace vex::com::native
