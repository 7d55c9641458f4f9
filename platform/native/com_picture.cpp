// Pictures of the native runtime.
#include "platform/native/com_picture.h"

#include <atomic>
#include <string_view>

#include "com/object.h"
#include "core/runtime_error.h"
#include "core/unicode.h"

namespace vex::platform::native {
namespace {

// The runtime stays loaded as long as the process; its own objects need no counting.
com::ModuleLifetime runtime_lifetime;

struct PictureMember {
    std::u16string_view name;
    DISPID id;
};

constexpr PictureMember kMembers[] = {
    {u"Handle", DISPID_PICT_HANDLE},
    {u"Type", DISPID_PICT_TYPE},
    {u"Width", DISPID_PICT_WIDTH},
    {u"Height", DISPID_PICT_HEIGHT},
};

/// 1/100 millimetres of pixels on a screen of 96 dots per inch.
LONG himetric(LONG pixels) noexcept { return pixels * 2540 / 96; }

OLE_HANDLE next_handle() noexcept {
    static std::atomic<OLE_HANDLE> last{0};
    return ++last;
}

class IconPicture final : public com::Object<IconPicture, IPictureDisp, IPicture> {
public:
    IconPicture(LONG width, LONG height) noexcept
        : Object(runtime_lifetime), handle_(next_handle()), width_(himetric(width)), height_(himetric(height)) {}

    HRESULT get_Handle(OLE_HANDLE* handle) noexcept override { return give(handle_, handle); }
    HRESULT get_hPal(OLE_HANDLE* palette) noexcept override { return give(OLE_HANDLE{0}, palette); }
    HRESULT get_Type(SHORT* type) noexcept override { return give(PICTYPE_ICON, type); }
    HRESULT get_Width(OLE_XSIZE_HIMETRIC* width) noexcept override { return give(width_, width); }
    HRESULT get_Height(OLE_YSIZE_HIMETRIC* height) noexcept override { return give(height_, height); }

    HRESULT GetTypeInfoCount(UINT* count) noexcept override { return give(UINT{0}, count); }
    HRESULT GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** info) noexcept override {
        if (info != nullptr) *info = nullptr;
        return E_NOTIMPL;
    }

    HRESULT GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT count, LCID /*locale*/,
                          DISPID* ids) noexcept override {
        if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
        for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
        for (const PictureMember& member : kMembers) {
            if (equal_ignoring_case(member.name, names[0])) ids[0] = member.id;
        }
        return ids[0] == DISPID_UNKNOWN || count > 1 ? DISP_E_UNKNOWNNAME : S_OK;
    }

    HRESULT Invoke(DISPID member, REFIID /*reserved*/, LCID /*locale*/, WORD flags, DISPPARAMS* parameters,
                   VARIANT* result, EXCEPINFO* /*exception*/, UINT* /*argument_error*/) noexcept override {
        if ((flags & DISPATCH_PROPERTYGET) == 0) return DISP_E_MEMBERNOTFOUND;
        if (parameters != nullptr && parameters->cArgs != 0) return DISP_E_BADPARAMCOUNT;
        VARIANT value;
        VariantInit(&value);
        value.vt = VT_I4;
        switch (member) {
            case DISPID_PICT_HANDLE: value.ulVal = handle_; break;
            case DISPID_PICT_TYPE:
                value.vt = VT_I2;
                value.iVal = PICTYPE_ICON;
                break;
            case DISPID_PICT_WIDTH: value.lVal = width_; break;
            case DISPID_PICT_HEIGHT: value.lVal = height_; break;
            default: return DISP_E_MEMBERNOTFOUND;
        }
        if (result != nullptr) *result = value;
        return S_OK;
    }

private:
    template <class Value>
    static HRESULT give(Value value, Value* place) noexcept {
        if (place == nullptr) return E_POINTER;
        *place = value;
        return S_OK;
    }

    OLE_HANDLE handle_;
    LONG width_;
    LONG height_;
};

}  // namespace

com::ComPtr<IPictureDisp> create_icon_picture(std::span<const std::uint8_t> icon_file) {
    // The file's head: reserved, type (1: icons), count, each a 16-bit number; then an entry for each image,
    // whose first two bytes are its width and height, 0 standing for 256.
    constexpr std::size_t kHead = 6;
    constexpr std::size_t kEntry = 16;
    const bool is_icon = icon_file.size() >= kHead + kEntry && icon_file[0] == 0 && icon_file[1] == 0 &&
                         icon_file[2] == 1 && icon_file[3] == 0 && (icon_file[4] | icon_file[5]) != 0;
    if (!is_icon) throw RuntimeError(kResourceNotFound);
    const auto pixels = [&icon_file](std::size_t at) { return icon_file[at] == 0 ? 256 : LONG{icon_file[at]}; };
    const auto picture = com::make_object<IconPicture>(pixels(kHead), pixels(kHead + 1));
    return com::ComPtr<IPictureDisp>(picture.get());
}

}  // namespace vex::platform::native
