// The screen of real windows: reads and operates the windows of a module's forms, found by their names, on the thread
// that shows them. It acts when they wait for input, and as a user does: by clicks, presses, keys and texts.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/win32/windows_api.h"
#include "simulator/screen.h"

namespace vex::sim {

/// The topmost form of the calling thread, or null.
HWND top_form_window();
/// The window of a control on a form; the window that it is drawn on for a shape; null when there is none.
HWND control_window(HWND form, std::u16string_view control);
std::u16string shown_text(HWND window);

/// One at a time on a thread has a user.
class Win32Screen final : public Screen {
public:
    /// `module`: the file name of the library whose dialogs are on the screen, loaded before anybody looks;
    /// empty: this program.
    explicit Win32Screen(std::u16string module) noexcept;
    ~Win32Screen() override;

    void set_user(ScreenUser* user) noexcept override;
    bool any_dialog() const noexcept override { return top_form_window() != nullptr; }
    std::optional<ShownControl> find(const std::u16string& control) const override;
    void close() override;
    void activate() override;

private:
    class Driver;

    std::u16string dialog_name() const override;
    std::u16string dialog_caption() const override;
    void do_click(const std::u16string& name) override;
    void do_press(const std::u16string& name, forms::MouseButton button, float x, float y) override;
    void do_type(const std::u16string& name, const std::u16string& text) override;
    bool do_choose(const std::u16string& name, std::size_t row, const std::u16string& item) override;

    std::u16string module_;
    /// While there is a user.
    std::unique_ptr<Driver> driver_;
};

}  // namespace vex::sim
