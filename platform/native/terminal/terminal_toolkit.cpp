// The Toolkit on a terminal.
#include "platform/native/terminal/terminal_toolkit.h"

#include <algorithm>
#include <utility>

#include "platform/native/terminal/colors.h"
#include "platform/native/terminal/message_form.h"
#include "platform/native/terminal/open_file_form.h"
#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {

/// A form is on the screen.
class TerminalToolkit::ShowScope {
public:
    ShowScope(TerminalToolkit& toolkit, forms::Form& form) : toolkit_(toolkit), window_(form, toolkit, toolkit.icons_) {
        toolkit_.windows_.push_back({window_, {}});
        toolkit_.stale_ = true;
    }
    ShowScope(const ShowScope&) = delete;
    ShowScope& operator=(const ShowScope&) = delete;
    ~ShowScope() {
        toolkit_.windows_.pop_back();
        toolkit_.stale_ = true;
    }

private:
    TerminalToolkit& toolkit_;
    FormWindow window_;
};

TerminalToolkit::TerminalToolkit(Screen& screen, const Drives& drives, IconCharacters icons, Surroundings surroundings)
    : screen_(screen), drives_(drives), icons_(std::move(icons)), surroundings_(std::move(surroundings)) {}

TerminalToolkit::~TerminalToolkit() = default;

forms::Form* TerminalToolkit::top() const noexcept {
    return windows_.empty() ? nullptr : &windows_.back().window.form();
}

void TerminalToolkit::run_modal(forms::Form& form, forms::Form* /*owner*/) {
    if (ended_) return;
    const ShowScope shown(*this, form);
    draw_now();
    form.raise_activate();
    while (form.running() && !ended_) {
        draw_when_stale();
        if (const auto input = read(true)) handle(*input);
    }
    if (form.running()) form.raise_close_request(forms::UnloadMode::system);
    if (form.running()) form.hide();
}

void TerminalToolkit::pump_messages() {
    while (!windows_.empty() && !ended_) {
        const auto input = read(false);
        if (!input) break;
        handle(*input);
    }
    draw_when_stale();
}

forms::MessageAnswer TerminalToolkit::message_box(const forms::MessageBox& box) {
    MessageForm form(*this, box);
    form.show_modal();
    return form.answer();
}

std::optional<std::u16string> TerminalToolkit::open_file(const forms::OpenFileRequest& request) {
    OpenFileForm form(*this, drives_, request);
    form.show_modal();
    return form.chosen();
}

std::optional<Input> TerminalToolkit::read(bool wait) {
    auto input = screen_.read(wait);
    if (!input) return input;
    if (const auto* ended = std::get_if<Ended>(&*input)) ended_ = *ended;
    if (std::holds_alternative<Resized>(*input)) stale_ = true;
    return input;
}

void TerminalToolkit::handle(const Input& input) {
    const Size size = screen_.size();
    // What cannot be seen takes no input.
    if (windows_.empty() || size.columns < kSmallestTerminal.columns || size.rows < kSmallestTerminal.rows) return;
    const ShownForm shown = windows_.back();
    if (const auto* key = std::get_if<KeyPress>(&input)) shown.window.handle(*key);
    if (const auto* mouse = std::get_if<MouseEvent>(&input)) {
        MouseEvent event = *mouse;
        event.at = {mouse->at.column - shown.at.column, mouse->at.row - shown.at.row};
        const Size frame = shown.window.size();
        const bool outside = !Area{0, 0, frame.columns, frame.rows}.contains(event.at);
        if (outside && event.action == MouseAction::press) return beep();
        shown.window.handle(event);
    }
}

void TerminalToolkit::draw_when_stale() {
    if (stale_) draw_now();
}

void TerminalToolkit::draw_now() {
    stale_ = false;
    const Size size = screen_.size();
    Canvas canvas(size, {look::kDesktopText, look::kDesktop});
    if (size.columns < kSmallestTerminal.columns || size.rows < kSmallestTerminal.rows) {
        draw_too_small(canvas);
        screen_.show(canvas, std::nullopt);
        return;
    }
    if (surroundings_.behind) surroundings_.behind(canvas);
    const Scale scale = scale_for(size);
    std::optional<Point> cursor;
    for (ShownForm& shown : windows_) {
        shown.window.set_scale(scale);
        const Size frame = shown.window.size();
        shown.at = {std::max(0, (size.columns - frame.columns) / 2), std::max(0, (size.rows - 1 - frame.rows) / 2)};
        const bool active = &shown == &windows_.back();
        const FormPicture& picture = shown.window.draw(active);
        canvas.paste(picture.canvas, shown.at);
        cursor.reset();
        if (active && picture.cursor) {
            cursor = Point{picture.cursor->column + shown.at.column, picture.cursor->row + shown.at.row};
        }
    }
    const Area line{0, size.rows - 1, size.columns, size.rows};
    if (surroundings_.host_line) {
        surroundings_.host_line(canvas, line);
    } else {
        draw_keys(canvas, line);
    }
    if (menu_) {
        draw_menu(canvas);
        const Area area = menu_area(size);
        cursor = Point{area.left + 2, area.top + 1 + static_cast<int>(menu_->chosen)};
    }
    screen_.show(canvas, cursor);
}

void TerminalToolkit::draw_too_small(Canvas& canvas) const {
    const Size size = canvas.size();
    const std::string text = "The terminal has " + std::to_string(size.columns) + " by " + std::to_string(size.rows) +
                             " characters. Please enlarge it to " + std::to_string(kSmallestTerminal.columns) + " by " +
                             std::to_string(kSmallestTerminal.rows) + ", or leave with Ctrl+C.";
    int row = 0;
    for (const std::u32string& line : wrap(std::u32string(text.begin(), text.end()), size.columns)) {
        canvas.text({0, row++}, line, {.fore = look::kDesktopText});
    }
}

void TerminalToolkit::draw_keys(Canvas& canvas, const Area& line) const {
    canvas.text({line.left + 1, line.top},
                U"Tab next   Enter press   Space choose   Esc close   F10 menu   Ctrl+C leave",
                {.fore = look::kDesktopText});
}

}  // namespace vex::platform::native::terminal
