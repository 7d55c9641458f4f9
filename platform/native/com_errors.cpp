// The COM runtime: each thread's error information.
#include <string>

#include "com/bstr.h"
#include "com/object.h"

namespace vex::platform::native {
namespace {

// The runtime stays loaded as long as the process; its own objects need no counting.
com::ModuleLifetime runtime_lifetime;

thread_local com::ComPtr<IErrorInfo> current_error;

class ErrorInformation final : public com::Object<ErrorInformation, ICreateErrorInfo, IErrorInfo> {
public:
    ErrorInformation() noexcept : Object(runtime_lifetime) {}

    HRESULT SetGUID(REFGUID guid) noexcept override {
        guid_ = guid;
        return S_OK;
    }
    HRESULT SetSource(LPOLESTR source) noexcept override { return keep(source, source_); }
    HRESULT SetDescription(LPOLESTR description) noexcept override { return keep(description, description_); }
    HRESULT SetHelpFile(LPOLESTR file) noexcept override { return keep(file, help_file_); }
    HRESULT SetHelpContext(DWORD context) noexcept override {
        help_context_ = context;
        return S_OK;
    }

    HRESULT GetGUID(GUID* guid) noexcept override {
        if (guid == nullptr) return E_POINTER;
        *guid = guid_;
        return S_OK;
    }
    HRESULT GetSource(BSTR* source) noexcept override { return give(source_, source); }
    HRESULT GetDescription(BSTR* description) noexcept override { return give(description_, description); }
    HRESULT GetHelpFile(BSTR* file) noexcept override { return give(help_file_, file); }
    HRESULT GetHelpContext(DWORD* context) noexcept override {
        if (context == nullptr) return E_POINTER;
        *context = help_context_;
        return S_OK;
    }

private:
    static HRESULT keep(const OLECHAR* text, com::Bstr& place) noexcept {
        com::Bstr copy;
        *copy.put() = SysAllocString(text);
        if (text != nullptr && copy.get() == nullptr) return E_OUTOFMEMORY;
        place = std::move(copy);
        return S_OK;
    }

    static HRESULT give(const com::Bstr& text, BSTR* place) noexcept {
        if (place == nullptr) return E_POINTER;
        *place = text.get() == nullptr ? nullptr : SysAllocStringLen(text.get(), SysStringLen(text.get()));
        return text.get() != nullptr && *place == nullptr ? E_OUTOFMEMORY : S_OK;
    }

    GUID guid_ = GUID_NULL;
    com::Bstr source_;
    com::Bstr description_;
    com::Bstr help_file_;
    DWORD help_context_ = 0;
};

}  // namespace
}  // namespace vex::platform::native

HRESULT CreateErrorInfo(ICreateErrorInfo** info) noexcept {
    if (info == nullptr) return E_INVALIDARG;
    *info = new (std::nothrow) vex::platform::native::ErrorInformation;
    return *info == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT SetErrorInfo(ULONG /*reserved*/, IErrorInfo* info) noexcept {
    vex::platform::native::current_error = vex::com::ComPtr<IErrorInfo>(info);
    return S_OK;
}

HRESULT GetErrorInfo(ULONG /*reserved*/, IErrorInfo** info) noexcept {
    if (info == nullptr) return E_INVALIDARG;
    *info = vex::platform::native::current_error.detach();
    return *info == nullptr ? S_FALSE : S_OK;
}
