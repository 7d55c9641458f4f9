// The window of one control: made from the control's data, kept like it, and the source of its events. All kinds but
// the list and the controls of the host.
#pragma once

#include <memory>
#include <optional>
#include <vector>

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
    /// Enter presses the push button that has the focus, however it came there, and else the form's own default
    /// one; the buttons' borders show which it is.
    void show_default_button() const noexcept;
    static BOOL CALLBACK show_whether_default(HWND child, LPARAM focused) noexcept;
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide_parameter, LPARAM long_parameter) noexcept;

    Surface& parent_;
    forms::Control& control_;
    HWND window_ = nullptr;
    WNDPROC system_procedure_ = nullptr;
    WindowName name_;
};

/// Text that lets what lies behind it show through. Takes its own mouse presses. A label with room for one line
/// does not break it, and grows to the right where a computer's font is wider than the designer's.
class LabelWindow final : public ControlWindow {
public:
    LabelWindow(Surface& parent, forms::Label& label, int id);

private:
    std::optional<LRESULT> message(UINT message, WPARAM wide_parameter, LPARAM long_parameter) override;
    void paint() const noexcept;
    void fit() noexcept;

    bool one_line_ = false;
};

/// A push button, an option button or a check box.
class ButtonWindow final : public ControlWindow {
public:
    ButtonWindow(Surface& parent, forms::Control& button, int id);

    void update(forms::Change change) override;
    void command(WORD code) override;

private:
    void show_value();
};

class TextBoxWindow final : public ControlWindow {
public:
    TextBoxWindow(Surface& parent, forms::TextBox& box, int id);

    void command(WORD code) override;
};

class PanelWindow final : public ControlWindow {
public:
    PanelWindow(Surface& parent, forms::Panel& panel);

    Surface* surface(std::size_t /*page*/) noexcept override { return &surface_; }

private:
    Surface surface_;
};

/// A container of pages, of which one shows. The strip with the pages' tabs is not drawn: it lies outside the
/// form's client area.
class PagesWindow final : public ControlWindow {
public:
    PagesWindow(Surface& parent, forms::TabPages& pages);

    void update(forms::Change change) override;
    Surface* surface(std::size_t page) noexcept override;

private:
    forms::TabPages& pages_;
    Surface frame_;
    std::vector<std::unique_ptr<Surface>> surfaces_;
};

}  // namespace vex::platform::win32
