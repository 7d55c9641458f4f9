// The boundary between our exceptions and COM's result codes: every COM method passes through here.
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "com/com.h"
#include "core/runtime_error.h"

namespace vex {

/// The facility of result codes that carry an automation error number in their lower half.
inline constexpr std::uint32_t kErrorNumberFacility = 0x800A0000U;

/// The result code that carries a run-time error: of that facility for the numbers 1 to 65535, a negative
/// number as it is, E_UNEXPECTED for any other.
HRESULT result_code(const RuntimeError& error) noexcept;

namespace boundary_detail {

/// The exception in flight as a result code, left in the thread's error information for `interface_id`.
HRESULT report_exception(REFIID interface_id) noexcept;
/// The exception in flight as DISP_E_EXCEPTION with its description in `exception`, which may be null.
HRESULT report_exception(EXCEPINFO* exception) noexcept;

template <class Body>
HRESULT run(Body&& body) {
    if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
        std::forward<Body>(body)();
        return S_OK;
    } else {
        return std::forward<Body>(body)();
    }
}

}  // namespace boundary_detail

/// Runs the body of a method of the interface `interface_id`; `body` answers nothing (success) or a result
/// code. What it throws becomes a result code with error information; without an exception the thread's
/// error information is cleared, so that nobody takes an older error for this call's.
template <class Body>
HRESULT guarded_method(REFIID interface_id, Body&& body) noexcept {
    try {
        const HRESULT result = boundary_detail::run(std::forward<Body>(body));
        SetErrorInfo(0, nullptr);
        return result;
    } catch (...) {
        return boundary_detail::report_exception(interface_id);
    }
}

/// The same for IDispatch::Invoke, which describes errors in its own structure: what `body` throws becomes
/// DISP_E_EXCEPTION. `exception` may be null; its strings are then the caller's.
template <class Body>
HRESULT guarded_invoke(EXCEPINFO* exception, Body&& body) noexcept {
    try {
        return boundary_detail::run(std::forward<Body>(body));
    } catch (...) {
        return boundary_detail::report_exception(exception);
    }
}

/// Turns the failure of a method that reports by error information into Invoke's form: takes the thread's
/// error information into `exception` (which may be null) and answers DISP_E_EXCEPTION.
HRESULT exception_from_error_info(HRESULT failure, EXCEPINFO* exception) noexcept;

}  // namespace vex
