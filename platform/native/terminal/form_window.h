// A form on the terminal while it is shown: draws it, and turns keys and mouse into what the user does to it.
#pragma once

#include "platform/native/terminal/list_pane.h"
#include "platform/native/terminal/screen.h"

namespace vex::platform::native::terminal {

class TerminalToolkit;

/// The view of its form from construction to destruction; the references must outlive it.
class FormWindow final : public forms::FormView {
public:
    FormWindow(forms::Form& form, TerminalToolkit& toolkit);
    FormWindow(const FormWindow&) = delete;
    ~FormWindow() override;

    forms::Form& form() const noexcept { return form_; }
    /// Draws the form in its frame; what was drawn last is what the mouse meets. `active`: it takes the input.
    void draw(const Scale& scale, bool active);
    const Canvas& picture() const noexcept { return canvas_; }
    const std::vector<PlacedControl>& controls() const noexcept { return controls_; }
    /// In the picture, where there is one.
    std::optional<Point> cursor() const noexcept { return cursor_; }

    /// The control that takes the keys, or null where there is none to take them. While the user has not moved it,
    /// that is the first in the keyboard order; on a form with pages the first of the page or, where it has none,
    /// the default button.
    forms::Control* focus();
    void set_focus(forms::Control& control) noexcept;
    /// Where the user points: at the place of the last mouse press, or of the row he works on.
    Point pointer() const noexcept { return pointer_; }
    /// The keys that do something now, the most important first.
    std::vector<std::u32string> keys();

    /// What the user did; with the mouse, in cells of the picture.
    void handle(const Input& input);

    void changed(forms::Control& control, forms::Change change) override;
    void refresh(forms::Control& control) override;
    forms::Twips row_top(const forms::ListView& list, std::size_t row) const override;

private:
    // The picture.
    void draw_frame();
    void draw_control(const PlacedControl& placed);
    void draw_text(const PlacedControl& placed, int column, Style style);
    void draw_button(const PlacedControl& placed);
    void draw_choice(const PlacedControl& placed, std::u32string_view brackets, std::u32string_view mark);
    void draw_brackets(const forms::Control& control, const Area& around, std::u32string_view brackets);
    void draw_text_box(const PlacedControl& placed);
    void draw_list(const PlacedControl& placed);
    bool focused(const forms::Control& control) const noexcept { return active_ && focus_ == &control; }
    /// The control seen at a cell, or null.
    const PlacedControl* control_at(Point at) const noexcept;
    const PlacedControl* find(const forms::Control& control) const noexcept;
    /// The pane of a list that is in the picture, or nothing.
    std::optional<ListPane> pane_of(const forms::Control& list) const;
    /// The character that the cursor of a text box stands before; at first, at the end.
    std::size_t& cursor_in(const forms::Control& box, std::u32string_view text);

    // Keys.
    void press_key(const KeyPress& key);
    void insert(std::u32string text);
    void move_focus(int direction);
    void move_option(forms::Control& option, int direction);
    void press_mnemonic(char32_t letter);
    forms::Control* button_of_enter();
    void request_close();
    bool edit(forms::TextBox& box, const KeyPress& key);
    void move_in(forms::ListView& list, const KeyPress& key);
    forms::ListView* list_with_menu();
    void open_menu();

    // The mouse.
    void turn_wheel(const MouseEvent& event);
    void mouse_press(const MouseEvent& event);
    void mouse_release(const MouseEvent& event);
    void raise_mouse_down(const PlacedControl& placed, const MouseEvent& event);

    forms::Form& form_;
    TerminalToolkit& toolkit_;
    forms::FormView* view_before_;

    Scale scale_;
    bool active_ = false;
    Canvas canvas_{Size{}};
    /// In drawing order: the last one that holds a cell is what is seen there.
    std::vector<PlacedControl> controls_;
    Area close_box_;
    std::optional<Point> cursor_;

    forms::Control* focus_ = nullptr;
    mutable std::map<const forms::Control*, ListScroll> lists_;
    std::map<const forms::Control*, std::size_t> cursors_;
    /// Whether what changes now is the user's doing.
    bool handling_ = false;
    /// Where the mouse button went down, and on which row of a list: a click needs its release there, too.
    const forms::Control* pressed_ = nullptr;
    std::optional<std::size_t> pressed_row_;
    bool close_pressed_ = false;
    Point pointer_;
};

}  // namespace vex::platform::native::terminal
