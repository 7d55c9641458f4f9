// The Windows headers of this folder, and the way between their texts and ours.
#pragma once

#include <string>

#include "com/com.h"
#include "core/runtime_error.h"

#include <cderr.h>
#include <commctrl.h>
#include <commdlg.h>

namespace vex::platform::win32 {

inline LPCWSTR wide(const char16_t* text) noexcept { return reinterpret_cast<LPCWSTR>(text); }
inline LPCWSTR wide(const std::u16string& text) noexcept { return reinterpret_cast<LPCWSTR>(text.c_str()); }
inline LPWSTR wide(std::u16string& text) noexcept { return reinterpret_cast<LPWSTR>(text.data()); }

/// The module (library or program) that this code is linked into.
HINSTANCE module_instance() noexcept;

/// The calling thread's last error as an error of ours: `what` went wrong, numbered as the system does.
RuntimeError last_error(const char16_t* what);

}  // namespace vex::platform::win32
