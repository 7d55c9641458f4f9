// The Toolkit on a terminal: modal forms, message boxes, the Open dialog and context menus as windows over
// each other.
#pragma once

#include <functional>

#include "forms/toolkit.h"
#include "platform/native/terminal/form_window.h"
#include "platform/native/terminal/screen.h"

namespace vex::platform::native::terminal {

/// Draws the host's line, the last row of the screen; or answers what is to stand there before the keys.
using HostLine = std::function<std::optional<std::u32string>(Canvas& canvas, const Area& line)>;

/// Used on one thread. The screen must outlive it, and it every form shown on it.
class TerminalToolkit : public forms::Toolkit {
public:
    /// Without a host's line, the keys are told there.
    explicit TerminalToolkit(Screen& screen, IconCharacters icons = {}, HostLine host_line = {});
    TerminalToolkit(const TerminalToolkit&) = delete;

    void run_modal(forms::Form& form, forms::Form* owner) override;
    void pump_messages() override;
    forms::MessageAnswer message_box(const forms::MessageBox& box) override;
    std::optional<std::u16string> open_file(const forms::OpenFileRequest& request) override;
    void pop_up_menu(forms::Form& form, forms::Menu& menu) override;
    void beep() override { screen_.beep(); }

    /// Why the process is to end, if it is: then no form is shown any more, and those that are end.
    const std::optional<Ended>& ended() const noexcept { return ended_; }
    /// The topmost form, or null; its window and its place on the screen.
    forms::Form* top() const noexcept;
    const FormWindow& top_window() const { return windows_.back()->window; }
    Point top_place() const { return windows_.back()->at; }
    /// A form that is on the screen, or null.
    forms::Form* find(std::string_view name) const noexcept;
    /// The form in its frame at the smallest terminal's scale, as it looks before the user moves in it.
    std::string picture_of(forms::Form& form);

    const IconCharacters& icons() const noexcept { return icons_; }
    /// Something changed: the screen is drawn again before the next wait.
    void invalidate() noexcept { stale_ = true; }
    void draw_now();

private:
    struct Shown {
        FormWindow window;
        /// Where a menu opens; others stand in the middle.
        std::optional<Point> anchor;
        /// The left top corner on the screen.
        Point at;
    };

    void handle(Input input);

    Screen& screen_;
    IconCharacters icons_;
    HostLine host_line_;
    std::vector<Shown*> windows_;
    /// Where the next form is to open.
    std::optional<Point> anchor_;
    bool stale_ = true;
    std::optional<Ended> ended_;
};

}  // namespace vex::platform::native::terminal
