// Owners of the system's handles.
#pragma once

#include <utility>

#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

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

}  // namespace vex::platform::win32
