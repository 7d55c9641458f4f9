// The Toolkit on a terminal: modal forms, message boxes, the Open dialog and context menus as windows over
// each other.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "forms/form.h"
#include "forms/toolkit.h"
#include "platform/native/terminal/canvas.h"
#include "platform/native/terminal/drives.h"
#include "platform/native/terminal/form_window.h"
#include "platform/native/terminal/screen.h"

namespace vex::platform::native::terminal {

/// What stands around the forms; each may be empty.
struct Surroundings {
    /// Draws what lies behind all forms.
    std::function<void(Canvas& canvas)> behind;
    /// Draws the host's line, the last row of the screen; without it, the keys are told there.
    std::function<void(Canvas& canvas, const Area& line)> host_line;
};

/// Used on one thread. The screen and the drives must outlive it, and it every form shown on it.
class TerminalToolkit final : public forms::Toolkit, private WindowOwner {
public:
    TerminalToolkit(Screen& screen, const Drives& drives, IconCharacters icons = {}, Surroundings surroundings = {});
    TerminalToolkit(const TerminalToolkit&) = delete;
    TerminalToolkit& operator=(const TerminalToolkit&) = delete;
    ~TerminalToolkit() override;

    void run_modal(forms::Form& form, forms::Form* owner) override;
    void pump_messages() override;
    forms::MessageAnswer message_box(const forms::MessageBox& box) override;
    std::optional<std::u16string> open_file(const forms::OpenFileRequest& request) override;
    void pop_up_menu(forms::Form& form, forms::Menu& menu) override;
    void beep() override { screen_.beep(); }

    /// Why the process is to end, if it is: then no form is shown any more, and those that are end.
    const std::optional<Ended>& ended() const noexcept { return ended_; }
    /// The topmost form, or null.
    forms::Form* top() const noexcept;
    void invalidate() override { stale_ = true; }

private:
    struct ShownForm {
        FormWindow& window;
        /// The left top corner on the screen.
        Point at;
    };
    class ShowScope;
    struct OpenMenu {
        const forms::Menu& menu;
        /// Below what it is about.
        Point at;
        std::size_t chosen = 0;
    };

    void draw_now() override;
    void draw_too_small(Canvas& canvas) const;
    void draw_menu(Canvas& canvas) const;
    void draw_keys(Canvas& canvas, const Area& line) const;
    void draw_when_stale();
    Area menu_area(Size screen) const;

    std::optional<Input> read(bool wait);
    void handle(const Input& input);
    /// True when the menu is done with; `chosen` is then the item, or null.
    bool handle_menu(const Input& input, const forms::MenuItem*& chosen);
    bool handle_menu_key(const KeyPress& key, const forms::MenuItem*& chosen);
    bool handle_menu_mouse(const MouseEvent& event, const forms::MenuItem*& chosen);

    Screen& screen_;
    const Drives& drives_;
    IconCharacters icons_;
    Surroundings surroundings_;
    std::vector<ShownForm> windows_;
    std::optional<OpenMenu> menu_;
    bool stale_ = true;
    std::optional<Ended> ended_;
};

}  // namespace vex::platform::native::terminal
