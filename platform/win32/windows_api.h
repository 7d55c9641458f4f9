// The Windows headers of this folder, the way between their texts and ours, and owners of what the system hands out.
#pragma once

#include <string>
#include <utility>

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
/// The full path of its file. Raises RuntimeError with the system's result code when the system does not tell.
std::u16string module_path();

/// The calling thread's last error as an error of ours: `what` went wrong, numbered as the system does.
RuntimeError last_error(const char16_t* what);

/// Owns one handle of a kind that `Free` gives back; null is none.
template <class Handle, auto Free>
class Owned {
public:
    Owned() noexcept = default;
    explicit Owned(Handle handle) noexcept : handle_(handle) {}
    Owned(Owned&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Owned& operator=(Owned&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Owned() {
        if (handle_ != nullptr) Free(handle_);
    }

    Handle get() const noexcept { return handle_; }
    explicit operator bool() const noexcept { return handle_ != nullptr; }
    /// Forgets the handle, which somebody else has given back.
    void release() noexcept { handle_ = nullptr; }

private:
    Handle handle_ = nullptr;
};

using OwnedWindow = Owned<HWND, DestroyWindow>;
using OwnedFont = Owned<HFONT, DeleteObject>;
using OwnedIcon = Owned<HICON, DestroyIcon>;
using OwnedMenu = Owned<HMENU, DestroyMenu>;

/// The context of a window that is being painted.
class PaintContext {
public:
    explicit PaintContext(HWND window) noexcept : window_(window), dc_(BeginPaint(window, &paint_)) {}
    PaintContext(const PaintContext&) = delete;
    PaintContext& operator=(const PaintContext&) = delete;
    ~PaintContext() { EndPaint(window_, &paint_); }
    HDC dc() const noexcept { return dc_; }

private:
    HWND window_;
    PAINTSTRUCT paint_ = {};
    HDC dc_;
};

/// A window's context (null: the screen's) outside painting.
class WindowContext {
public:
    explicit WindowContext(HWND window) noexcept : window_(window), dc_(GetDC(window)) {}
    WindowContext(const WindowContext&) = delete;
    WindowContext& operator=(const WindowContext&) = delete;
    ~WindowContext() { ReleaseDC(window_, dc_); }
    HDC dc() const noexcept { return dc_; }

private:
    HWND window_;
    HDC dc_;
};

/// Loads a library of the system when it is wanted and not together with this module: a host that only lists what
/// the module contributes, or registers it, would wait for the dialogs' libraries much longer than for the module.
/// Stays loaded, as the module may be unloaded under the loader's lock, when no other library may be freed.
class LateLibrary {
public:
    /// Raises RuntimeError when there is no such library.
    explicit LateLibrary(const char16_t* name) : module_(load(wide(name))) {
        if (module_ == nullptr) throw last_error(u"A library of the system cannot be loaded");
    }

    /// An exported function. Raises RuntimeError when there is none of that name.
    template <class Function>
    Function* function(const char* name) const {
        if (auto* const found = try_function<Function>(name)) return found;
        throw last_error(u"A function of the system is missing");
    }
    /// The same, or null.
    template <class Function>
    Function* try_function(const char* name) const noexcept {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    }

private:
    /// From the system's folder, or where the active manifest says; never from the host's folder or the current one.
    static HMODULE load(const wchar_t* name) noexcept {
        const HMODULE module = LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
        // Windows 7 before its update KB2533623 does not know the flag. Both libraries are safe there all the same:
        // the system knows the one by its name, and the manifest names the folder of the other.
        return module == nullptr && GetLastError() == ERROR_INVALID_PARAMETER ? LoadLibraryW(name) : module;
    }

    HMODULE module_;
};

}  // namespace vex::platform::win32
