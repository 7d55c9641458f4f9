// The screen of real windows: reads and operates the windows of the plug-in's dialogs, found by their names.
#pragma once

#include <optional>

#include "simulator/screen.h"
#include "simulator/win32/window_driver.h"

namespace vex::sim {

class Win32Screen final : public Screen, private WindowUser {
public:
    /// `module`: the file name of the library whose dialogs are on the screen, loaded before anybody looks;
    /// empty: this program.
    // cppcheck-suppress passedByValue ; it is moved
    explicit Win32Screen(std::u16string module) noexcept : module_(std::move(module)) {}

    void set_user(ScreenUser* user) noexcept override;
    bool any_dialog() const noexcept override { return top_form_window() != nullptr; }
    bool has_control(const std::u16string& name) const override;
    ActionResult click(const std::u16string& name) override;
    ActionResult press(const std::u16string& name, forms::MouseButton button, float x, float y) override;
    ActionResult set(const std::u16string& name, const std::u16string& value) override;
    ActionResult choose_from_menu(const std::u16string& name, std::size_t row, const std::u16string& item) override;
    void close() override;
    void activate() override;
    std::u16string property(const std::u16string& name, const std::u16string& property) const override;
    std::vector<std::vector<std::u16string>> rows(const std::u16string& name) const override;

private:
    void form_opened(const std::u16string& name) noexcept override;
    void form_closed(const std::u16string& name) noexcept override;
    bool act() noexcept override { return user_ != nullptr && user_->act(); }
    void messages_handled() noexcept override;
    forms::MessageAnswer answer(const forms::MessageBox& box) noexcept override;
    std::optional<std::u16string> choose_file(const forms::OpenFileRequest& request) noexcept override;
    void beeped() noexcept override;

    /// The topmost dialog.
    static WindowHandle dialog();
    static WindowHandle control(const std::u16string& name);
    static WindowHandle list(const std::u16string& name);

    std::u16string module_;
    ScreenUser* user_ = nullptr;
    /// While there is a user.
    std::optional<WindowDriver> driver_;
};

}  // namespace vex::sim
