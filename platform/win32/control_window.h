// The window of one control: made from the control's data, kept like it, and the source of its events.
#pragma once

#include <memory>
#include <optional>

#include "platform/win32/surface.h"
#include "platform/win32/window_name.h"

namespace vex::platform::win32 {

class ControlWindow {
public:
    ControlWindow(const ControlWindow&) = delete;
    ControlWindow& operator=(const ControlWindow&) = delete;
    virtual ~ControlWindow();

    /// The window of `control` on `parent`; null for what is drawn on the surface itself. Later windows come
    /// later in the keyboard order. Throws RuntimeError.
    static std::unique_ptr<ControlWindow> make(Surface& parent, forms::Control& control, int id);
    /// The control window behind a window that this makes, else null.
    static ControlWindow* from(HWND window) noexcept;

    forms::Control& control() const noexcept { return control_; }
    HWND window() const noexcept { return window_; }

    /// Shows what the program changed.
    virtual void update(forms::Change change);
    /// A WM_COMMAND notification of the window.
    virtual void command(WORD /*code*/) {}
    /// A WM_NOTIFY notification of the window. Answers nothing for the system's own handling.
    virtual std::optional<LRESULT> notify(NMHDR& /*header*/) { return std::nullopt; }
    /// The surface of a container's page (0 for a panel's only one), or null.
    virtual Surface* surface(std::size_t /*page*/) noexcept { return nullptr; }

protected:
    ControlWindow(Surface& parent, forms::Control& control) noexcept : parent_(parent), control_(control) {}

    Surface& parent() const noexcept { return parent_; }
    FormContext& context() const noexcept { return parent_.context(); }
    RECT place() const noexcept { return parent_.pixels(control_.place()); }

    /// Makes a window of one of the system's classes and listens to its messages.
    void create(LPCWSTR window_class, DWORD style, DWORD extended_style, int id);
    /// Takes a window that the derived class owns.
    void adopt(HWND window);
    /// A message before the system's own handling. Answers nothing to let that happen.
    virtual std::optional<LRESULT> message(UINT message, WPARAM wide_parameter, LPARAM long_parameter);
    /// The system's own handling, now.
    LRESULT system_handling(UINT message, WPARAM wide_parameter, LPARAM long_parameter) noexcept;

private:
    void show_default_button() const noexcept;
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide_parameter, LPARAM long_parameter) noexcept;

    Surface& parent_;
    forms::Control& control_;
    HWND window_ = nullptr;
    WNDPROC system_procedure_ = nullptr;
    WindowName name_;
};

}  // namespace vex::platform::win32
