// The COM runtime: its own objects, which are each thread's error information and pictures.
#include <new>

#include "com/bstr.h"
#include "com/native/server.h"
#include "com/object.h"
#include "core/runtime_error.h"

namespace vex::com::native {
namespace {

// The runtime stays loaded as long as the process; its own objects need no counting.
ModuleLifetime runtime_lifetime;

/// Source and description; there are no help files here.
class ErrorInformation final : public Object<ErrorInformation, ICreateErrorInfo, IErrorInfo> {
public:
    ErrorInformation() noexcept : Object(runtime_lifetime) {}

    HRESULT SetGUID(REFGUID guid) noexcept override {
        guid_ = guid;
        return S_OK;
    }
    HRESULT SetSource(LPOLESTR source) noexcept override { return copy(source, source_.put()); }
    HRESULT SetDescription(LPOLESTR description) noexcept override { return copy(description, description_.put()); }
    HRESULT SetHelpFile(LPOLESTR /*file*/) noexcept override { return E_NOTIMPL; }
    HRESULT SetHelpContext(DWORD /*context*/) noexcept override { return E_NOTIMPL; }

    HRESULT GetGUID(GUID* guid) noexcept override {
        *guid = guid_;
        return S_OK;
    }
    HRESULT GetSource(BSTR* source) noexcept override { return copy(source_.get(), source); }
    HRESULT GetDescription(BSTR* description) noexcept override { return copy(description_.get(), description); }
    HRESULT GetHelpFile(BSTR* file) noexcept override { return copy(nullptr, file); }
    HRESULT GetHelpContext(DWORD* context) noexcept override {
        *context = 0;
        return S_OK;
    }

private:
    static HRESULT copy(const OLECHAR* text, BSTR* place) noexcept {
        *place = SysAllocString(text);
        return text != nullptr && *place == nullptr ? E_OUTOFMEMORY : S_OK;
    }

    GUID guid_ = GUID_NULL;
    Bstr source_;
    Bstr description_;
};

thread_local ComPtr<IErrorInfo> current_error;

/// All that is known of a picture here is that it is one.
class Picture final : public Object<Picture, Untyped<IPictureDisp>> {
public:
    Picture() noexcept : Object(runtime_lifetime) {}

    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) noexcept override {
        return DISP_E_MEMBERNOTFOUND;
    }
};

}  // namespace

ComPtr<IPictureDisp> create_picture() { return ComPtr<IPictureDisp>(make_object<Picture>().get()); }

}  // namespace vex::com::native

HRESULT CreateErrorInfo(ICreateErrorInfo** info) noexcept {
    *info = new (std::nothrow) vex::com::native::ErrorInformation;
    return *info == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info) noexcept {
    if (reserved != 0) return E_INVALIDARG;
    vex::com::native::current_error = vex::com::ComPtr<IErrorInfo>(info);
    return S_OK;
}

HRESULT GetErrorInfo(ULONG /*reserved*/, IErrorInfo** info) noexcept {
    *info = vex::com::native::current_error.detach();
    return *info == nullptr ? S_FALSE : S_OK;
}
