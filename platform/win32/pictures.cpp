// The Windows side of the pictures seam.
#include "platform/win32/pictures.h"

#include "core/runtime_error.h"
#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {
namespace {

class IconPictures final : public Pictures {
public:
    com::ComPtr<IPictureDisp> load_icon(std::int16_t id) override {
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
};

}  // namespace

Pictures& pictures() {
    static IconPictures instance;
    return instance;
}

}  // namespace vex::platform::win32
