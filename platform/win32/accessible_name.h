// What a program without eyes calls a window whose own text does not say.
#pragma once

#include <string_view>

#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

/// Gives the window an accessible name. Does nothing where the system's accessibility service is missing.
void set_accessible_name(HWND window, std::u16string_view name);
/// Takes the name back; to be called before the window is destroyed.
void clear_accessible_name(HWND window);

}  // namespace vex::platform::win32
