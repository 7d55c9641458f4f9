#include "platform/win32/pictures.h"

#include <vector>

#include "core/unicode.h"

namespace vex::platform::win32 {

com::ComPtr<IPictureDisp> load_icon(std::int16_t id) {
    const auto name = MAKEINTRESOURCEW(static_cast<WORD>(id));
    const auto icon = static_cast<HICON>(LoadImageW(module_instance(), name, IMAGE_ICON, 0, 0, 0));
    if (icon == nullptr) throw RuntimeError(kResourceNotFound);
    PICTDESC description{};
    description.cbSizeofstruct = sizeof description;
    description.picType = PICTYPE_ICON;
    description.icon.hicon = icon;
    com::ComPtr<IPictureDisp> picture;
    // TRUE: the picture owns the icon from now on.
    const HRESULT result = OleCreatePictureIndirect(&description, IID_IPictureDisp, TRUE, picture.put_void());
    if (FAILED(result)) {
        DestroyIcon(icon);
        throw RuntimeError(result, u"The picture cannot be made");
    }
    return picture;
}

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
