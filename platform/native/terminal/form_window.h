// A form on the terminal while it is shown: turns keys and mouse into what the user does to the form.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "forms/form.h"
#include "platform/native/terminal/form_picture.h"
#include "platform/native/terminal/input.h"

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

/// The view of its form from construction to destruction; both must outlive it.
class FormWindow final : public forms::FormView {
public:
    FormWindow(forms::Form& form, WindowOwner& owner, const IconCharacters& icons);
    FormWindow(const FormWindow&) = delete;
    FormWindow& operator=(const FormWindow&) = delete;
    ~FormWindow() override;

    forms::Form& form() const noexcept { return form_; }
    void set_scale(const Scale& scale) noexcept { look_.scale = scale; }
    Size size() const noexcept { return frame_size(form_, look_.scale); }

    /// Draws the form; what was drawn last is what the mouse meets.
    const FormPicture& draw(bool active);

    /// The control that takes the keys, or null where there is none to take them.
    forms::Control* focus();
    void set_focus(forms::Control& control) noexcept;
    /// Where the user points: at the place of the last mouse press, or of the row he works on.
    Point pointer() const noexcept { return pointer_; }

    void handle(const KeyPress& key);
    /// Its place in cells of the picture.
    void handle(const MouseEvent& event);

    void changed(forms::Control& control, forms::Change change) override;
    void refresh(forms::Control& control) override;
    forms::Twips row_top(const forms::ListView& list, std::size_t row) const override;

private:
    // The keyboard.
    std::vector<forms::Control*> tab_stops() const;
    void move_focus(int direction);
    void move_option(forms::Control& option, int direction);
    bool press_mnemonic(char32_t letter);
    void press(forms::Control& control);
    void press_enter();
    void press_escape();
    void handle_key_of(forms::ListView& list, const KeyPress& key);
    /// Goes to the next row that begins with what was typed in one go.
    bool search(forms::ListView& list, char32_t letter);
    void select(forms::ListView& list, std::size_t row);
    void open_menu();

    // The mouse.
    void mouse_press(const MouseEvent& event);
    void mouse_release(const MouseEvent& event);
    void mouse_wheel(const MouseEvent& event);
    void raise_mouse_down(const PlacedControl& placed, const MouseEvent& event);
    void press_list(forms::ListView& list, const MouseEvent& event);

    /// The pane of a list that is in the picture, or nothing.
    std::optional<ListPane> pane_of(const forms::ListView& list) const;

    forms::Form& form_;
    WindowOwner& owner_;
    const IconCharacters& icons_;
    mutable FormLook look_;
    FormPicture picture_;
    forms::Control* focus_ = nullptr;
    /// Where the mouse button went down: a click needs its release there, too.
    const forms::Control* pressed_ = nullptr;
    bool close_pressed_ = false;
    Point pointer_;
    /// What was typed in a list in one go, and when last.
    std::u32string typed_;
    std::chrono::steady_clock::time_point typed_at_;
};

}  // namespace vex::platform::native::terminal
