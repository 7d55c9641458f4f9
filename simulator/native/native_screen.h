// The screen where dialogs are data: a scripted toolkit shows them, and the user acts on them directly. What he looks
// at can be drawn as text.
#pragma once

#include <functional>
#include <ostream>
#include <variant>

#include "core/unicode.h"
#include "forms/scripted_toolkit.h"
#include "platform/native/terminal/list_pane.h"
#include "simulator/screen.h"

namespace vex::sim {

/// What a user looks at.
using Sight = std::variant<forms::Form*, const forms::MessageBox*, const forms::OpenFileRequest*>;
using Onlooker = std::function<void(const Sight& sight)>;

/// Draws a dialog where it looks different from what was drawn last, message boxes, and dialogs at work, once each.
/// `out` must outlive it.
Onlooker pictures(std::ostream& out);

/// The characters that stand for icons on a terminal: the plug-in's own and the simulated host's.
platform::native::terminal::IconCharacters icon_characters();

class NativeScreen : public Screen, private forms::ScriptedUser {
public:
    NativeScreen() noexcept : toolkit_(*this) {}

    /// What the plug-in's dialogs are shown on.
    forms::Toolkit& toolkit() noexcept { return toolkit_; }
    /// Told of what its user looks at, before he does something about it.
    Onlooker on_look = [](const Sight&) {};

    void set_user(ScreenUser* user) noexcept override { user_ = user; }
    bool any_dialog() const noexcept override { return toolkit_.top() != nullptr; }
    std::optional<ShownControl> find(const std::u16string& name) const override;
    void look() override { on_look(toolkit_.top()); }
    void close() override { form().raise_close_request(); }
    void activate() override { form().raise_activate(); }

protected:
    /// The topmost dialog. Raises `std::invalid_argument` where there is none.
    virtual forms::Form& form() const;
    /// A control of it, which there is.
    forms::Control& form_control(const std::u16string& name) const { return *form().find(to_utf8(name)); }

private:
    std::u16string dialog_name() const override { return from_utf8(form().name()); }
    std::u16string dialog_caption() const override { return form().caption(); }
    std::vector<std::u16string> control_names() const override;
    void do_click(const std::u16string& name) override { form().raise_click(form_control(name)); }
    void do_press(const std::u16string& name, forms::MouseButton button, float x, float y) override {
        form().raise_mouse_down(form_control(name), button, x, y);
    }
    void do_type(const std::u16string& name, const std::u16string& text) override {
        form().user_text(static_cast<forms::TextBox&>(form_control(name)), text);
    }
    bool do_choose(const std::u16string& name, std::size_t row, const std::u16string& item) override;

    void form_opened(forms::Form& form) override { user_->form_opened(from_utf8(form.name())); }
    void form_closed(forms::Form& form) override { user_->form_closed(from_utf8(form.name())); }
    bool act(forms::Form& form) override {
        on_look(&form);
        return user_->act();
    }
    void pumped(forms::Form& /*form*/) override { user_->messages_handled(); }
    forms::MessageAnswer answer(const forms::MessageBox& box) override {
        on_look(&box);
        return user_->answer(box);
    }
    std::optional<std::u16string> choose_file(const forms::OpenFileRequest& request) override {
        on_look(&request);
        return user_->choose_file(request);
    }
    const forms::MenuItem* choose(const forms::Menu& menu) override;
    void beep() override { user_->beeped(); }

    /// There is one while anything is shown.
    ScreenUser* user_ = nullptr;
    forms::ScriptedToolkit toolkit_;
    /// The item to choose from the menu that pops up next; empty: none, the menu is dismissed.
    std::u16string menu_item_;
};

}  // namespace vex::sim
