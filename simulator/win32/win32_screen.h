// The screen of real windows: reads and operates the windows of the plug-in's dialogs, found by their names.
#pragma once

#include <optional>

#include "simulator/screen.h"
#include "simulator/win32/window_driver.h"

namespace vex::sim {

class Win32Screen final : public Screen {
public:
    /// `module`: the file name of the library whose dialogs are on the screen, loaded before anybody looks;
    /// empty: this program.
    // cppcheck-suppress passedByValue ; it is moved
    explicit Win32Screen(std::u16string module) noexcept : module_(std::move(module)) {}

    void set_user(ScreenUser* user) noexcept override;
    bool any_dialog() const noexcept override { return top_form_window() != nullptr; }
    std::optional<ShownControl> find(const std::u16string& control) const override;
    void close() override { driver_->close(dialog()); }
    void activate() override { driver_->activate(dialog()); }

private:
    std::u16string dialog_name() const override { return shown_name(dialog()); }
    std::u16string dialog_caption() const override { return shown_text(dialog()); }
    void do_click(const std::u16string& name) override { driver_->click(window(name)); }
    void do_press(const std::u16string& name, forms::MouseButton button, float x, float y) override {
        driver_->press(window(name), button, x, y);
    }
    void do_type(const std::u16string& name, const std::u16string& text) override {
        driver_->set_text(window(name), text);
    }
    bool do_choose(const std::u16string& name, std::size_t row, const std::u16string& item) override {
        return driver_->choose_from_menu(window(name), row, item);
    }

    /// The topmost dialog. Raises `std::invalid_argument`.
    static WindowHandle dialog();
    static WindowHandle window(const std::u16string& name) {
        return control_window(dialog(), name);
    }

    std::u16string module_;
    /// While there is a user.
    std::optional<WindowDriver> driver_;
};

}  // namespace vex::sim
