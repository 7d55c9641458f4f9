// The window of a form while it is shown: made from the form's table, kept like the form, gone with the view.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "forms/form.h"
#include "platform/win32/control_window.h"
#include "platform/win32/surface.h"

namespace vex::platform::win32 {

class FormWindow final : public forms::FormView {
public:
    /// Makes the windows of a loaded form, hidden, in the middle of what it comes to stand over, if that is not null.
    /// While it lives it is the thread's topmost one and the form's view. Throws RuntimeError.
    FormWindow(forms::Form& form, HWND owner, HWND below);
    ~FormWindow() override;

    /// The thread's topmost one, or null.
    static FormWindow* top() noexcept;

    HWND window() const noexcept { return root_.window(); }
    /// Puts the form on the screen, before all others, and gives it the focus.
    void show();
    /// Whether the form was activated since the last question; true at first.
    bool take_activation() noexcept { return std::exchange(activated_, false); }
    /// Raises what a window procedure had to keep.
    void rethrow_fault() { context_.rethrow_fault(); }
    /// Where a context menu belongs now, in screen pixels: at the pointer, unless the keyboard asked for it.
    POINT menu_place() const noexcept;

    void changed(forms::Control& control, forms::Change change) override;
    void refresh(forms::Control& control) override;
    forms::Twips row_top(const forms::ListView& list, std::size_t row) const override;

private:
    /// The form's own client area.
    class Root final : public Surface {
    public:
        explicit Root(FormWindow& form_window) noexcept
            : Surface(form_window.context_, nullptr, -1), form_window_(form_window) {}

    private:
        std::optional<LRESULT> handle(UINT message, WPARAM wide_parameter, LPARAM long_parameter) override;

        FormWindow& form_window_;
    };

    void set_frame(HWND below);
    void make_controls(Surface& surface);
    void make_control(Surface& surface, forms::Control& control);
    ControlWindow* find(const forms::Control& control) const noexcept;
    Surface* surface_below(const forms::Control& control) noexcept;
    void move_focus_from(HWND focus) noexcept;
    bool may_end_session() const;

    FormContext context_;
    OwnedIcon small_icon_;
    OwnedIcon large_icon_;
    Root root_;
    WindowName name_;
    /// Children after their containers.
    std::vector<std::unique_ptr<ControlWindow>> controls_;
    bool activated_ = true;
    /// The one that was topmost before.
    FormWindow* below_ = nullptr;
};

}  // namespace vex::platform::win32
