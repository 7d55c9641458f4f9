// Icons among the resources of the module.
#include "platform/win32/module_icon.h"

#include "core/unicode.h"

namespace vex::platform::win32 {

OwnedIcon module_icon(std::string_view name, int width, int height) {
    if (name.empty()) return {};
    return OwnedIcon(static_cast<HICON>(
        LoadImageW(module_instance(), wide(from_utf8(name)), IMAGE_ICON, width, height, LR_DEFAULTCOLOR)));
}

}  // namespace vex::platform::win32
