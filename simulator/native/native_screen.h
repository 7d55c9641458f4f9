// The screen where dialogs are data: a scripted toolkit shows them, and the user acts on them directly.
#pragma once

#include "forms/scripted_toolkit.h"
#include "simulator/screen.h"

namespace vex::sim {

class NativeScreen : public Screen, private forms::ScriptedUser {
public:
    NativeScreen() noexcept : toolkit_(*this) {}

    /// What the plug-in's dialogs are shown on.
    forms::Toolkit& toolkit() noexcept { return toolkit_; }
    /// The topmost dialog, or null.
    forms::Form* top() const noexcept { return toolkit_.top(); }

    void set_user(ScreenUser* user) noexcept override { user_ = user; }
    bool any_dialog() const noexcept override { return toolkit_.top() != nullptr; }
    bool has_control(const std::u16string& name) const override;
    ActionResult click(const std::u16string& name) override;
    ActionResult press(const std::u16string& name, forms::MouseButton button, float x, float y) override;
    ActionResult set(const std::u16string& name, const std::u16string& value) override;
    ActionResult choose_from_menu(const std::u16string& name, std::size_t row, const std::u16string& item) override;
    void close() override;
    void activate() override;
    std::u16string property(const std::u16string& name, const std::u16string& property) const override;
    std::vector<std::vector<std::u16string>> rows(const std::u16string& name) const override;

protected:
    /// The topmost dialog. Raises `std::invalid_argument` where there is none.
    virtual forms::Form& form() const;
    forms::Control& control(const std::u16string& name) const;

private:
    void form_opened(forms::Form& form) override;
    void form_closed(forms::Form& form) override;
    bool act(forms::Form& form) override;
    void pumped(forms::Form& form) override;
    forms::MessageAnswer answer(const forms::MessageBox& box) override;
    std::optional<std::u16string> choose_file(const forms::OpenFileRequest& request) override;
    const forms::MenuItem* choose(const forms::Menu& menu) override;
    void beep() override;

    forms::ListView& list(const std::u16string& name) const;

    ScreenUser* user_ = nullptr;
    forms::ScriptedToolkit toolkit_;
    /// The item to choose from the menu that pops up next; empty: none, the menu is dismissed.
    std::u16string menu_item_;
};

}  // namespace vex::sim
