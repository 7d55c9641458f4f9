// The Toolkit on a terminal.
#include "platform/native/terminal/terminal_toolkit.h"

#include <deque>
#include <utility>

#include "platform/native/terminal/open_file_form.h"
#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {
namespace {

using forms::MessageAnswer;
using forms::Twips;

/// Dialogs of the toolkit's own are laid out in cells of the coarsest scale.
constexpr Scale kCell;

class MessageForm final : public forms::Form {
public:
    MessageForm(forms::Toolkit& toolkit, const forms::MessageBox& box)
        : Form(toolkit, design_for(box)),
          question_(box.buttons == forms::MessageButtons::yes_no),
          answer_(question_ ? MessageAnswer::no : MessageAnswer::ok) {
        const Twips top = height() - 2 * kCell.row;
        const Twips left = (width() - (question_ ? 2000 : 900)) / 2;
        lay_out({
            {.control = text_,
             .name = "text",
             .at = {2 * kCell.column, kCell.row, width() - 4 * kCell.column, height() - 4 * kCell.row},
             .text = box.text},
            {.control = first_,
             .name = "first",
             .at = {left, top, 900, kCell.row},
             .text = question_ ? u"&Yes" : u"OK",
             .tab_index = 0},
            {.control = second_,
             .name = "second",
             .at = {left + 1100, top, 900, kCell.row},
             .text = u"&No",
             .tab_index = 1,
             .visible = question_},
        });
        first_.is_default = true;
        first_.is_cancel = !question_;
        first_.on_click = [this] { choose(question_ ? MessageAnswer::yes : MessageAnswer::ok); };
        second_.on_click = [this] { choose(MessageAnswer::no); };
    }

    /// The answer given; of a question that the end of the process closed: no.
    MessageAnswer answer() const noexcept { return answer_; }

protected:
    /// A question is answered, not closed.
    void Form_QueryUnload(bool& cancel, forms::UnloadMode mode) override {
        cancel = question_ && mode == forms::UnloadMode::control_menu;
    }

private:
    /// As large as the text needs: a row above it, two between it and the buttons' row, one below.
    static forms::FormDesign design_for(const forms::MessageBox& box) {
        constexpr int kNarrowest = 28;
        constexpr int kWidest = 66;
        const std::u32string text = to_utf32(box.text);
        int width = std::max(kNarrowest, text_width(to_utf32(box.title)) + 8);
        for (const std::u32string& line : wrap(text, kWidest)) width = std::max(width, text_width(line));
        width = std::min(width, kWidest);
        const auto rows = static_cast<Twips>(wrap(text, width).size()) + 4;
        return {.name = "MessageBox",
                .caption = box.title,
                .width = (width + 4) * kCell.column,
                .height = rows * kCell.row};
    }
    void choose(MessageAnswer answer) {
        answer_ = answer;
        hide();
    }

    bool question_;
    MessageAnswer answer_;
    forms::Label text_;
    forms::Button first_, second_;
};

/// A button for each item.
class MenuForm final : public forms::Form {
public:
    MenuForm(forms::Toolkit& toolkit, const forms::Menu& menu)
        : Form(toolkit, {.name = "Menu", .width = width_of(menu), .height = rows(menu.items.size())}) {
        for (const forms::MenuItem& item : menu.items) {
            // An item without a mnemonic has its first letter.
            const bool marked = parse_caption(item.caption).mnemonic.has_value();
            const auto row = static_cast<int>(buttons_.size());
            forms::Button& button = buttons_.emplace_back();
            captions_.push_back(marked ? item.caption : u"&" + item.caption);
            lay_out({{.control = button,
                      .name = item.name,
                      .at = {0, rows(buttons_.size() - 1), width(), kCell.row},
                      .text = captions_.back(),
                      .tab_index = row}});
            button.on_click = [this, &item] {
                chosen = &item;
                hide();
            };
        }
    }

    const forms::MenuItem* chosen = nullptr;

private:
    static Twips rows(std::size_t count) noexcept { return static_cast<Twips>(count) * kCell.row; }
    static Twips width_of(const forms::Menu& menu) {
        int width = 0;
        for (const forms::MenuItem& item : menu.items) {
            width = std::max(width, text_width(parse_caption(item.caption).text));
        }
        return (width + 2) * kCell.column;
    }

    // They stay where they are while more are added.
    std::deque<forms::Button> buttons_;
    std::deque<std::u16string> captions_;
};

bool too_small(Size size) noexcept {
    return size.columns < kSmallestTerminal.columns || size.rows < kSmallestTerminal.rows;
}

}  // namespace

/// A form is on the screen.
class TerminalToolkit::ShowScope {
public:
    ShowScope(TerminalToolkit& toolkit, forms::Form& form)
        : toolkit_(toolkit),
          shown_{{form, toolkit, toolkit.icons_}, std::exchange(toolkit.anchor_, std::nullopt), {}} {
        toolkit_.windows_.push_back(&shown_);
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
    Shown shown_;
};

TerminalToolkit::TerminalToolkit(Screen& screen, IconCharacters icons, HostLine host_line)
    : screen_(screen), icons_(std::move(icons)), host_line_(std::move(host_line)) {}

TerminalToolkit::~TerminalToolkit() = default;

forms::Form* TerminalToolkit::top() const noexcept {
    return windows_.empty() ? nullptr : &windows_.back()->window.form();
}

forms::Form* TerminalToolkit::find(std::string_view name) const noexcept {
    for (const Shown* shown : windows_) {
        if (shown->window.form().name() == name) return &shown->window.form();
    }
    return nullptr;
}

void TerminalToolkit::run_modal(forms::Form& form, forms::Form* /*owner*/) {
    if (ended_) return;
    const ShowScope shown(*this, form);
    draw_now();
    form.raise_activate();
    while (form.running() && !ended_) {
        if (stale_) draw_now();
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
    if (stale_) draw_now();
}

MessageAnswer TerminalToolkit::message_box(const forms::MessageBox& box) {
    MessageForm form(*this, box);
    form.show_modal();
    return form.answer();
}

std::optional<std::u16string> TerminalToolkit::open_file(const forms::OpenFileRequest& request) {
    OpenFileForm form(*this, request);
    form.show_modal();
    return form.chosen();
}

void TerminalToolkit::pop_up_menu(forms::Form& form, forms::Menu& menu) {
    if (windows_.empty() || menu.items.empty()) return;
    const Shown& shown = *windows_.back();
    anchor_ = Point{shown.at.column + shown.window.pointer().column, shown.at.row + shown.window.pointer().row + 1};
    MenuForm menu_form(*this, menu);
    menu_form.show_modal();
    if (menu_form.chosen != nullptr && !ended_) form.raise_menu_click(*menu_form.chosen);
}

std::optional<Input> TerminalToolkit::read(bool wait) {
    auto input = screen_.read(wait);
    if (!input) return input;
    if (const auto* ended = std::get_if<Ended>(&*input)) ended_ = *ended;
    if (std::holds_alternative<Resized>(*input)) stale_ = true;
    return input;
}

void TerminalToolkit::handle(const Input& input) {
    // What cannot be seen takes no input.
    if (windows_.empty() || too_small(screen_.size())) return;
    Shown& shown = *windows_.back();
    if (const auto* key = std::get_if<KeyPress>(&input)) shown.window.handle(*key);
    if (const auto* paste = std::get_if<Paste>(&input)) shown.window.handle(*paste);
    if (const auto* mouse = std::get_if<MouseEvent>(&input)) {
        MouseEvent event = *mouse;
        event.at = {mouse->at.column - shown.at.column, mouse->at.row - shown.at.row};
        const bool outside = !shown.window.picture().canvas.area().contains(event.at);
        if (outside && event.action == MouseAction::press) {
            // A press beside a menu dismisses it.
            return shown.anchor ? shown.window.form().raise_close_request() : beep();
        }
        shown.window.handle(event);
    }
}

void TerminalToolkit::draw_now() {
    stale_ = false;
    const Size size = screen_.size();
    Canvas canvas(size, look::kDesktop);
    if (too_small(size)) {
        draw_too_small(canvas);
        return screen_.show(canvas, std::nullopt);
    }
    const Scale scale = scale_for(size);
    std::optional<Point> cursor;
    for (Shown* shown : windows_) {
        const bool active = shown == windows_.back();
        // Menus are as small as they can be.
        const FormPicture& picture = shown->window.draw(shown->anchor ? kCell : scale, active);
        const Size frame = picture.canvas.size();
        const Size room{size.columns - frame.columns, size.rows - frame.rows};
        shown->at = shown->anchor.value_or(Point{room.columns / 2, (room.rows - 1) / 2});
        shown->at = {std::clamp(shown->at.column, 0, std::max(0, room.columns)),
                     std::clamp(shown->at.row, 0, std::max(0, room.rows))};
        canvas.paste(picture.canvas, shown->at);
        cursor = picture.cursor;
        if (cursor) cursor = Point{cursor->column + shown->at.column, cursor->row + shown->at.row};
    }
    const Area line{0, size.rows - 1, size.columns, size.rows};
    const std::u32string keys = key_line(size.columns - 2);
    host_line_ ? host_line_(canvas, line, keys) : void(canvas.text({1, line.top}, keys, look::kDesktop));
    screen_.show(canvas, cursor);
}

void TerminalToolkit::draw_too_small(Canvas& canvas) const {
    const Size size = canvas.size();
    const std::string text = "The terminal has " + std::to_string(size.columns) + " by " + std::to_string(size.rows) +
                             " characters. Please enlarge it to " + std::to_string(kSmallestTerminal.columns) + " by " +
                             std::to_string(kSmallestTerminal.rows) + ", or leave with Ctrl+C.";
    int row = 0;
    for (const std::u32string& line : wrap(std::u32string(text.begin(), text.end()), size.columns)) {
        canvas.text({0, row++}, line, look::kDesktop);
    }
}

std::u32string TerminalToolkit::key_line(int width) const {
    constexpr std::u32string_view kLeave = U"Ctrl+C leave";
    if (windows_.empty()) return {};
    std::u32string line;
    for (const std::u32string& key : windows_.back()->window.keys()) {
        if (text_width(line) + text_width(key) + text_width(kLeave) + 3 > width) continue;
        line += key + U"   ";
    }
    return line.append(kLeave);
}

std::string picture_of(const forms::Form& form, const IconCharacters& icons) {
    FormLook look;
    look.focus = first_focus(form);
    return text_picture(draw_form(form, look, icons).canvas);
}

}  // namespace vex::platform::native::terminal
