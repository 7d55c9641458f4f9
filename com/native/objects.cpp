// The COM runtime: its own objects, which are each thread's error information and pictures.
#include <atomic>
#include <new>
#include <string>

#include "com/bstr.h"
#include "com/native/server.h"
#include "com/object.h"
#include "core/runtime_error.h"

namespace vex::com::native {
namespace {

// The runtime stays loaded as long as the process; its own objects need no counting.
ModuleLifetime runtime_lifetime;

template <class Value>
HRESULT give(Value value, Value* place) noexcept {
    if (place == nullptr) return E_POINTER;
    *place = value;
    return S_OK;
}

/// Source and description; there are no help files here.
class ErrorInformation final : public Object<ErrorInformation, ICreateErrorInfo, IErrorInfo> {
public:
    ErrorInformation() noexcept : Object(runtime_lifetime) {}

    HRESULT SetGUID(REFGUID guid) noexcept override {
        guid_ = guid;
        return S_OK;
    }
    HRESULT SetSource(LPOLESTR source) noexcept override { return keep(source, source_); }
    HRESULT SetDescription(LPOLESTR description) noexcept override { return keep(description, description_); }
    HRESULT SetHelpFile(LPOLESTR /*file*/) noexcept override { return E_NOTIMPL; }
    HRESULT SetHelpContext(DWORD /*context*/) noexcept override { return E_NOTIMPL; }

    HRESULT GetGUID(GUID* guid) noexcept override { return give(guid_, guid); }
    HRESULT GetSource(BSTR* source) noexcept override { return give_copy(source_, source); }
    HRESULT GetDescription(BSTR* description) noexcept override { return give_copy(description_, description); }
    HRESULT GetHelpFile(BSTR* file) noexcept override { return give(BSTR{}, file); }
    HRESULT GetHelpContext(DWORD* context) noexcept override { return give(DWORD{0}, context); }

private:
    static HRESULT keep(const OLECHAR* text, Bstr& place) noexcept {
        *place.put() = SysAllocString(text);
        return text != nullptr && place.get() == nullptr ? E_OUTOFMEMORY : S_OK;
    }

    static HRESULT give_copy(const Bstr& text, BSTR* place) noexcept {
        const HRESULT result = give(SysAllocString(text.get()), place);
        return SUCCEEDED(result) && text.get() != nullptr && *place == nullptr ? E_OUTOFMEMORY : result;
    }

    GUID guid_ = GUID_NULL;
    Bstr source_;
    Bstr description_;
};

thread_local ComPtr<IErrorInfo> current_error;

/// 1/100 millimetres of pixels on a screen of 96 dots per inch.
LONG himetric(LONG pixels) noexcept { return pixels * 2540 / 96; }

OLE_HANDLE next_handle() noexcept {
    static std::atomic<OLE_HANDLE> last{0};
    return ++last;
}

/// What OLE makes of an icon, as far as hosts read it.
class IconPicture final : public Object<IconPicture, Untyped<IPictureDisp>, IPicture> {
public:
    IconPicture(LONG width, LONG height) noexcept
        : Object(runtime_lifetime), handle_(next_handle()), width_(himetric(width)), height_(himetric(height)) {}

    HRESULT get_Handle(OLE_HANDLE* handle) noexcept override { return give(handle_, handle); }
    HRESULT get_hPal(OLE_HANDLE* palette) noexcept override { return give(OLE_HANDLE{0}, palette); }
    HRESULT get_Type(SHORT* type) noexcept override { return give(PICTYPE_ICON, type); }
    HRESULT get_Width(OLE_XSIZE_HIMETRIC* width) noexcept override { return give(width_, width); }
    HRESULT get_Height(OLE_YSIZE_HIMETRIC* height) noexcept override { return give(height_, height); }

    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) noexcept override {
        return DISP_E_MEMBERNOTFOUND;
    }

private:
    OLE_HANDLE handle_;
    LONG width_;
    LONG height_;
};

}  // namespace

ComPtr<IPictureDisp> create_icon_picture(std::span<const std::uint8_t> icon_file) {
    // The file's head: reserved, type (1: icons), count, each a 16-bit number; then an entry for each image,
    // whose first two bytes are its width and height, 0 standing for 256.
    constexpr std::size_t kHead = 6;
    constexpr std::size_t kEntry = 16;
    const bool is_icon = icon_file.size() >= kHead + kEntry && icon_file[0] == 0 && icon_file[1] == 0 &&
                         icon_file[2] == 1 && icon_file[3] == 0 && (icon_file[4] | icon_file[5]) != 0;
    if (!is_icon) throw RuntimeError(kResourceNotFound);
    const auto pixels = [&icon_file](std::size_t at) { return icon_file[at] == 0 ? 256 : LONG{icon_file[at]}; };
    const auto picture = make_object<IconPicture>(pixels(kHead), pixels(kHead + 1));
    return ComPtr<IPictureDisp>(picture.get());
}

}  // namespace vex::com::native

HRESULT CreateErrorInfo(ICreateErrorInfo** info) noexcept {
    if (info == nullptr) return E_INVALIDARG;
    *info = new (std::nothrow) vex::com::native::ErrorInformation;
    return *info == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info) noexcept {
    if (reserved != 0) return E_INVALIDARG;
    vex::com::native::current_error = vex::com::ComPtr<IErrorInfo>(info);
    return S_OK;
}

HRESULT GetErrorInfo(ULONG /*reserved*/, IErrorInfo** info) noexcept {
    if (info == nullptr) return E_INVALIDARG;
    *info = vex::com::native::current_error.detach();
    return *info == nullptr ? S_FALSE : S_OK;
}
