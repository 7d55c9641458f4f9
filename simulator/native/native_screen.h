// The screen where dialogs are data: a scripted toolkit shows them, and the user acts on them directly.
#pragma once

#include "forms/scripted_toolkit.h"
#include "simulator/screen.h"

namespace vex::sim {

/// Watches what is on the screen.
class Onlooker {
public:
    virtual ~Onlooker() = default;
    virtual void sees(forms::Form& form) = 0;
    virtual void sees(const forms::MessageBox& box) = 0;
    virtual void sees(const forms::OpenFileRequest& request) = 0;
};

class NativeScreen : public Screen, private forms::ScriptedUser {
public:
    NativeScreen() noexcept : toolkit_(*this) {}

    /// What the plug-in's dialogs are shown on.
    forms::Toolkit& toolkit() noexcept { return toolkit_; }
    /// Told of what its user looks at, before he does something about it. Not owned; null for nobody.
    void set_onlooker(Onlooker* onlooker) noexcept { onlooker_ = onlooker; }

    void set_user(ScreenUser* user) noexcept override { user_ = user; }
    bool any_dialog() const noexcept override { return toolkit_.top() != nullptr; }
    std::optional<ShownControl> find(const std::u16string& control) const override;
    void look() override;
    void close() override { form().raise_close_request(); }
    void activate() override { form().raise_activate(); }

protected:
    /// The topmost dialog. Raises `std::invalid_argument` where there is none.
    virtual forms::Form& form() const;
    forms::Control& control(const std::u16string& name) const;

private:
    std::u16string dialog_name() const override;
    std::vector<std::u16string> control_names() const override;
    std::u16string dialog_caption() const override { return form().caption(); }
    void do_click(const std::u16string& name) override;
    void do_press(const std::u16string& name, forms::MouseButton button, float x, float y) override;
    void do_type(const std::u16string& name, const std::u16string& text) override;
    bool do_choose(const std::u16string& name, std::size_t row, const std::u16string& item) override;

    void form_opened(forms::Form& form) override;
    void form_closed(forms::Form& form) override;
    bool act(forms::Form& form) override;
    void pumped(forms::Form& form) override;
    forms::MessageAnswer answer(const forms::MessageBox& box) override;
    std::optional<std::u16string> choose_file(const forms::OpenFileRequest& request) override;
    const forms::MenuItem* choose(const forms::Menu& menu) override;
    void beep() override;

    ScreenUser* user_ = nullptr;
    Onlooker* onlooker_ = nullptr;
    forms::ScriptedToolkit toolkit_;
    /// The item to choose from the menu that pops up next; empty: none, the menu is dismissed.
    std::u16string menu_item_;
};

}  // namespace vex::sim
