// The boundary between our exceptions and COM's result codes.
#include "com/boundary.h"

#include <new>
#include <string>
#include <utility>

#include "com/bstr.h"
#include "com/com_ptr.h"
#include "core/product.h"

namespace vex {
namespace {

/// An error in the form in which callers outside get it.
struct Failure {
    HRESULT result = E_UNEXPECTED;
    std::u16string description;
};

Failure describe_exception() noexcept {
    Failure failure;
    try {
        // cppcheck-suppress rethrowNoCurrentException ; called from handlers only
        throw;
    } catch (const RuntimeError& error) {
        failure.result = result_code(error);
        try {
            failure.description = error.description();
        } catch (...) {
            // Without memory for the text the number must do.
        }
    } catch (const std::bad_alloc&) {
        failure.result = E_OUTOFMEMORY;
    } catch (...) {
        failure.result = E_UNEXPECTED;
    }
    return failure;
}

LPOLESTR writable(const OLECHAR* text) noexcept { return const_cast<LPOLESTR>(text); }

BSTR optional_bstr(std::u16string_view text) noexcept {
    if (!std::in_range<UINT>(text.size())) return nullptr;
    return SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
}

}  // namespace

HRESULT result_code(const RuntimeError& error) noexcept {
    const std::int32_t number = error.number();
    if (number < 0) return number;
    if (number < 1 || number > 0xFFFF) return E_UNEXPECTED;
    return static_cast<HRESULT>(kErrorNumberFacility | static_cast<std::uint32_t>(number));
}

HRESULT boundary_detail::report_exception(REFIID interface_id) noexcept {
    const Failure failure = describe_exception();
    com::ComPtr<IErrorInfo> error;
    com::ComPtr<ICreateErrorInfo> info;
    if (SUCCEEDED(CreateErrorInfo(info.put()))) {
        info->SetGUID(interface_id);
        info->SetSource(writable(reinterpret_cast<const OLECHAR*>(kApplicationTitle)));
        info->SetDescription(writable(com::ole_text(failure.description)));
        error = info.query<IErrorInfo>();
    }
    // Without memory for a new one, at least not an older one.
    SetErrorInfo(0, error.get());
    return failure.result;
}

HRESULT boundary_detail::report_exception(EXCEPINFO* exception) noexcept {
    const Failure failure = describe_exception();
    if (exception == nullptr) return DISP_E_EXCEPTION;
    *exception = EXCEPINFO{};
    exception->scode = failure.result;
    exception->bstrSource = optional_bstr(kApplicationTitle);
    exception->bstrDescription = optional_bstr(failure.description);
    return DISP_E_EXCEPTION;
}

HRESULT exception_from_error_info(HRESULT failure, EXCEPINFO* exception) noexcept {
    com::ComPtr<IErrorInfo> info;
    GetErrorInfo(0, info.put());
    if (exception == nullptr) return DISP_E_EXCEPTION;
    *exception = EXCEPINFO{};
    exception->scode = failure;
    if (info) {
        info->GetSource(&exception->bstrSource);
        info->GetDescription(&exception->bstrDescription);
        info->GetHelpFile(&exception->bstrHelpFile);
        info->GetHelpContext(&exception->dwHelpContext);
    }
    return DISP_E_EXCEPTION;
}

}  // namespace vex
