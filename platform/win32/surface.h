// An area that controls lie on: the form's client area, a panel, or a page. Draws its back colour, its shapes
// and its lines, and passes on what the windows on it report.
#pragma once

#include <optional>
#include <vector>

#include "platform/win32/form_context.h"

namespace vex::platform::win32 {

/// The window is a dialog box of the system, a child one for all but the form itself, so that the system's
/// dialog keyboard works through all of them.
class Surface {
public:
    /// For the form itself (`container` null), a panel, or a page of a tab control.
    Surface(FormContext& context, forms::Control* container, int page);
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;
    virtual ~Surface() = default;

    HWND window() const noexcept { return window_.get(); }
    forms::Control* container() const noexcept { return container_; }
    int page() const noexcept { return page_; }
    FormContext& context() const noexcept { return context_; }

    /// Makes the window, hidden unless `style` says otherwise. Throws RuntimeError.
    void create(HWND parent, DWORD style, DWORD extended_style);
    /// Shapes and lines of the form that lie here, in drawing order.
    void adopt_drawings();

    /// A place on this surface in pixels of its client area.
    RECT pixels(const forms::Rect& place) const noexcept;
    /// Draws the background, shapes and lines included, into a context whose origin is this surface's.
    void paint(HDC dc) const noexcept;
    /// Draws a shape or line again with the next paint messages.
    void invalidate(const forms::Control& drawing);

protected:
    /// A message, after the drawing ones. Answers nothing for the system's own handling.
    virtual std::optional<LRESULT> handle(UINT message, WPARAM wide_parameter, LPARAM long_parameter);
    OwnedWindow& owned_window() noexcept { return window_; }

private:
    static INT_PTR CALLBACK dialog_procedure(HWND window, UINT message, WPARAM wide_parameter,
                                             LPARAM long_parameter) noexcept;
    std::optional<LRESULT> handle_any(UINT message, WPARAM wide_parameter, LPARAM long_parameter);
    HBRUSH brush(HDC dc) const noexcept;
    void color_child(HDC dc, HWND child) const noexcept;

    FormContext& context_;
    forms::Control* container_;
    int page_;
    POINT origin_ = {};
    std::vector<const forms::Control*> drawings_;
    OwnedWindow window_;
};

/// The button that a mouse message is about, or nothing when it is no press.
std::optional<forms::MouseButton> pressed_button(UINT message) noexcept;
/// Raises a press at the client position of a mouse message.
void raise_mouse_down(FormContext& context, forms::Control& control, forms::MouseButton button,
                      LPARAM position) noexcept;
/// The colour of a control's text: black is whatever the user's colours have in its place.
COLORREF text_color(forms::Color color, int system_color) noexcept;

}  // namespace vex::platform::win32
