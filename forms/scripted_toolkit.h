// The Toolkit without a screen: a scripted user acts on the forms.
#pragma once

#include <memory>
#include <vector>

#include "forms/form.h"
#include "forms/toolkit.h"

namespace vex::forms {

/// Plays the user: one who does nothing but close what opens, unless derived classes say more. Called on the
/// toolkit's thread, inside the modal loops.
class ScriptedUser {
public:
    virtual ~ScriptedUser() = default;
    /// The form is on the screen / has left it.
    virtual void form_opened(Form& /*form*/) {}
    virtual void form_closed(Form& /*form*/) {}
    /// The modal loop waits for input: do the next thing to the form, the topmost one. False: there is
    /// nothing left to do; then the user closes the form, and where it refuses, the loop is ended.
    virtual bool act(Form& /*form*/) { return false; }
    /// Messages are being pumped while the form is the topmost one and busy.
    virtual void pumped(Form& /*form*/) {}
    virtual MessageAnswer answer(const MessageBox& /*box*/) { return MessageAnswer::ok; }
    virtual std::optional<std::u16string> choose_file(const OpenFileRequest& /*request*/) { return std::nullopt; }
    /// The item to choose, or null to dismiss the menu.
    virtual const MenuItem* choose(const Menu& /*menu*/) { return nullptr; }
    virtual void beep() {}
};

/// Runs forms for a scripted user. List rows have a fixed height, see below.
class ScriptedToolkit final : public Toolkit {
public:
    /// The header of a list view and each row, in twips.
    static constexpr Twips kHeaderHeight = 270;
    static constexpr Twips kRowHeight = 255;

    explicit ScriptedToolkit(ScriptedUser& user) noexcept : user_(user) {}

    void run_modal(Form& form, Form* owner) override;
    void pump_messages() override;
    MessageAnswer message_box(const MessageBox& box) override { return user_.answer(box); }
    std::optional<std::u16string> open_file(const OpenFileRequest& request) override {
        return user_.choose_file(request);
    }
    void pop_up_menu(Form& form, Menu& menu) override;
    void beep() override { user_.beep(); }

    /// The topmost form, or null.
    Form* top() const noexcept { return forms_.empty() ? nullptr : forms_.back(); }

private:
    ScriptedUser& user_;
    std::vector<Form*> forms_;
};

}  // namespace vex::forms
