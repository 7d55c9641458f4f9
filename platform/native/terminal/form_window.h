// A form on the terminal while it is shown: turns keys and mouse into what the user does to the form.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "forms/form.h"
#include "platform/native/terminal/form_picture.h"
#include "platform/native/terminal/screen.h"

namespace vex::platform::native::terminal {

/// What a window asks of the screen around it.
class WindowOwner {
public:
    virtual ~WindowOwner() = default;
    virtual void beep() = 0;
    /// Something changed: the screen is drawn again before the next wait.
    virtual void invalidate() = 0;
    /// Draws the screen now.
    virtual void draw_now() = 0;
};

/// The control that has the focus while the user has not moved it: the first in the keyboard order, on a form with
/// pages the first of the page or, where it has none, the default button. Null: none can have it.
forms::Control* first_focus(const forms::Form& form);

/// The view of its form from construction to destruction; both must outlive it.
class FormWindow final : public forms::FormView {
public:
    FormWindow(forms::Form& form, WindowOwner& owner, const IconCharacters& icons);
    FormWindow(const FormWindow&) = delete;
    FormWindow& operator=(const FormWindow&) = delete;
    ~FormWindow() override;

    forms::Form& form() const noexcept { return form_; }
    /// Draws the form; what was drawn last is what the mouse meets.
    const FormPicture& draw(const Scale& scale, bool active);
    const FormPicture& picture() const noexcept { return picture_; }

    /// The control that takes the keys, or null where there is none to take them.
    forms::Control* focus();
    void set_focus(forms::Control& control) noexcept;
    /// Where the user points: at the place of the last mouse press, or of the row he works on.
    Point pointer() const noexcept { return pointer_; }
    /// The keys that do something now, the most important first.
    std::vector<std::u32string> keys();

    void handle(const KeyPress& key);
    void handle(const Paste& paste);
    /// Its place in cells of the picture.
    void handle(const MouseEvent& event);

    void changed(forms::Control& control, forms::Change change) override;
    void refresh(forms::Control& control) override;
    forms::Twips row_top(const forms::ListView& list, std::size_t row) const override;

private:
    void press_key(const KeyPress& key);
    void move_focus(int direction);
    void move_option(forms::Control& option, int direction);
    bool press_mnemonic(char32_t letter);
    void press_enter();
    void press_escape();
    void request_close();
    bool edit(forms::TextBox& box, const KeyPress& key);
    void move_in(forms::ListView& list, const KeyPress& key);
    bool search(forms::ListView& list, char32_t letter);
    void open_menu();
    forms::ListView* list_with_menu();

    void mouse_press(const MouseEvent& event);
    void mouse_release(const MouseEvent& event);
    void raise_mouse_down(const PlacedControl& placed, const MouseEvent& event);

    /// The pane of a list that is in the picture, or nothing.
    std::optional<ListPane> pane_of(const forms::Control& list) const;

    forms::Form& form_;
    WindowOwner& owner_;
    const IconCharacters& icons_;
    mutable FormLook look_;
    FormPicture picture_;
    forms::Control* focus_ = nullptr;
    /// Whether what changes now is the user's doing.
    bool handling_ = false;
    /// Where the mouse button went down, and on which row of a list: a click needs its release there, too.
    const forms::Control* pressed_ = nullptr;
    std::optional<std::size_t> pressed_row_;
    bool close_pressed_ = false;
    Point pointer_;
};

}  // namespace vex::platform::native::terminal
