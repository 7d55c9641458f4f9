// Icons among the resources of the module.
#include "platform/win32/module_icon.h"

#include <vector>

#include "core/unicode.h"

namespace vex::platform::win32 {

OwnedIcon module_icon(std::string_view name, int width, int height) {
    if (name.empty()) return {};
    return OwnedIcon(static_cast<HICON>(
        LoadImageW(module_instance(), wide(from_utf8(name)), IMAGE_ICON, width, height, LR_DEFAULTCOLOR)));
}

OwnedIcon empty_icon(int width, int height) {
    // One bit for each pixel, rows in whole words: all transparent, and nothing to draw there.
    const std::size_t row_size = (static_cast<std::size_t>(width) + 15) / 16 * 2;
    const std::vector<BYTE> transparent(row_size * static_cast<std::size_t>(height), 0xFF);
    const std::vector<BYTE> nothing(transparent.size(), 0);
    return OwnedIcon(CreateIcon(module_instance(), width, height, 1, 1, transparent.data(), nothing.data()));
}

}  // namespace vex::platform::win32
