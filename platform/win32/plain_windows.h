// The windows of the plain kinds of control: label, buttons, text box, and the containers.
#pragma once

#include <vector>

#include "platform/win32/control_window.h"

namespace vex::platform::win32 {

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
