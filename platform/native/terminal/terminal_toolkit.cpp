// The Toolkit on a terminal.
#include "platform/native/terminal/terminal_toolkit.h"

#include <memory>
#include <utility>

#include "core/unicode.h"

namespace vex::platform::native::terminal {
namespace {

using forms::MessageAnswer;
using forms::Rect;
using forms::Twips;

/// Dialogs of the toolkit's own are laid out in cells of the coarsest scale.
constexpr Scale kCell;

/// Asks for one of several answers: a message box, or a menu, in which the answers stand below each other.
class ChoiceForm final : public forms::Form {
public:
    using Texts = std::vector<std::u16string>;

    ChoiceForm(forms::Toolkit& toolkit, const std::u16string& title, const std::u16string& text, const Texts& answers,
               bool menu)
        : Form(toolkit, design_for(title, text, answers, menu)),
          closes_(menu || answers.size() == 1),
          buttons_(answers.size()) {
        const auto [column, row] = kCell;
        const Rect text_place{2 * column, row, width() - 4 * column, height() - 4 * row};
        if (!menu) lay_out({{text_, "text", nullptr, -1, text_place, text}});
        const Twips left = (width() - 11 * column * static_cast<Twips>(answers.size()) + 2 * column) / 2;
        for (std::size_t i = 0; i < answers.size(); ++i) {
            const int number = static_cast<int>(i);
            const Rect place = menu ? Rect{0, number * row, width(), row}
                                    : Rect{left + number * 11 * column, height() - 2 * row, 9 * column, row};
            lay_out({{buttons_[i], "answer", nullptr, -1, place, answers[i], number}});
            buttons_[i].on_click = [this, i] {
                answer = i;
                hide();
            };
        }
        buttons_.front().is_default = true;
        buttons_.front().is_cancel = closes_ && !menu;
    }

    /// The one chosen; nothing when the form was closed.
    std::optional<std::size_t> answer;

protected:
    /// A question is answered, not closed.
    void Form_QueryUnload(bool& cancel, forms::UnloadMode mode) override {
        cancel = !closes_ && mode == forms::UnloadMode::control_menu;
    }

private:
    /// As large as the text needs: a row above it, two between it and the buttons' row, one below.
    static forms::FormDesign design_for(const std::u16string& title, const std::u16string& text, const Texts& answers,
                                        bool menu) {
        constexpr int kWidest = 66;
        int width = menu ? 0 : std::clamp(text_width(to_utf32(title)) + 8, 28, kWidest);
        for (const std::u32string& line : wrap(to_utf32(text), kWidest)) width = std::max(width, text_width(line));
        for (const std::u16string& answer : answers) width = std::max(width, text_width(parse_caption(answer).text));
        const std::size_t rows = menu ? answers.size() : wrap(to_utf32(text), width).size() + 4;
        return {.name = menu ? "Menu" : "MessageBox",
                .caption = title,
                .width = (width + (menu ? 2 : 4)) * kCell.column,
                .height = static_cast<Twips>(rows) * kCell.row};
    }

    bool closes_;
    forms::Label text_;
    std::vector<forms::Button> buttons_;
};

bool too_small(Size size) noexcept {
    return size.columns < kSmallestTerminal.columns || size.rows < kSmallestTerminal.rows;
}

}  // namespace

TerminalToolkit::TerminalToolkit(Screen& screen, IconCharacters icons, HostLine host_line)
    : screen_(screen), icons_(std::move(icons)), host_line_(std::move(host_line)) {}

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
    Shown shown{{form, *this}, std::exchange(anchor_, std::nullopt), {}};
    windows_.push_back(&shown);
    // Also when the form ends by an error.
    const std::shared_ptr<void> closing(nullptr, [this](void*) {
        windows_.pop_back();
        stale_ = true;
    });
    draw_now();
    form.raise_activate();
    while (form.running() && !ended_) {
        if (stale_) draw_now();
        if (const auto input = screen_.read(true)) handle(*input);
    }
    if (form.running()) form.raise_close_request(forms::UnloadMode::system);
    if (form.running()) form.hide();
}

void TerminalToolkit::pump_messages() {
    while (!windows_.empty() && !ended_) {
        const auto input = screen_.read(false);
        if (!input) break;
        handle(*input);
    }
    if (stale_) draw_now();
}

MessageAnswer TerminalToolkit::message_box(const forms::MessageBox& box) {
    const bool question = box.buttons == forms::MessageButtons::yes_no;
    ChoiceForm form(*this, std::u16string(box.title), std::u16string(box.text),
                    question ? ChoiceForm::Texts{u"&Yes", u"&No"} : ChoiceForm::Texts{u"OK"}, false);
    form.show_modal();
    if (!question) return MessageAnswer::ok;
    return form.answer == 0U ? MessageAnswer::yes : MessageAnswer::no;
}

void TerminalToolkit::pop_up_menu(forms::Form& form, forms::Menu& menu) {
    if (windows_.empty() || menu.items.empty()) return;
    const Shown& shown = *windows_.back();
    anchor_ = Point{shown.at.column + shown.window.pointer().column, shown.at.row + shown.window.pointer().row + 1};
    ChoiceForm::Texts items;
    for (const forms::MenuItem& item : menu.items) {
        // An item without a mnemonic has its first letter.
        items.push_back(parse_caption(item.caption).mnemonic ? item.caption : u"&" + item.caption);
    }
    ChoiceForm choice(*this, {}, {}, items, true);
    choice.show_modal();
    if (choice.answer && !ended_) form.raise_menu_click(menu.items[*choice.answer]);
}

std::string TerminalToolkit::picture_of(forms::Form& form) {
    FormWindow window(form, *this);
    window.draw({}, true);
    return text_picture(window.picture());
}

void TerminalToolkit::handle(Input input) {
    if (const auto* ended = std::get_if<Ended>(&input)) ended_ = *ended;
    if (std::holds_alternative<Resized>(input)) stale_ = true;
    // What cannot be seen takes no input.
    if (too_small(screen_.size())) return;
    Shown& shown = *windows_.back();
    if (auto* mouse = std::get_if<MouseEvent>(&input)) {
        mouse->at = {mouse->at.column - shown.at.column, mouse->at.row - shown.at.row};
        if (mouse->action == MouseAction::press && !shown.window.picture().area().contains(mouse->at)) {
            // A press beside a menu dismisses it.
            return shown.anchor ? shown.window.form().raise_close_request() : beep();
        }
    }
    shown.window.handle(input);
}

void TerminalToolkit::draw_now() {
    stale_ = false;
    const Size size = screen_.size();
    Canvas canvas(size, look::kDesktop);
    if (too_small(size)) {
        const std::string text = "The terminal has " + std::to_string(size.columns) + " by " +
                                 std::to_string(size.rows) +
                                 " characters. Please enlarge it to 80 by 24, or leave with Ctrl+C.";
        int row = 0;
        for (const auto& line : wrap(to_utf32(from_utf8(text)), size.columns)) {
            canvas.text({0, row++}, line, look::kDesktop);
        }
        return screen_.show(canvas, std::nullopt);
    }
    const Scale scale = scale_for(size);
    std::optional<Point> cursor;
    for (Shown* shown : windows_) {
        const bool active = shown == windows_.back();
        // Menus are as small as they can be.
        shown->window.draw(shown->anchor ? kCell : scale, active);
        const Size frame = shown->window.picture().size();
        const Size room{size.columns - frame.columns, size.rows - frame.rows};
        shown->at = shown->anchor.value_or(Point{room.columns / 2, (room.rows - 1) / 2});
        shown->at.column = std::clamp(shown->at.column, 0, std::max(0, room.columns));
        shown->at.row = std::clamp(shown->at.row, 0, std::max(0, room.rows));
        canvas.paste(shown->window.picture(), shown->at);
        cursor = shown->window.cursor();
        if (cursor) cursor = Point{cursor->column + shown->at.column, cursor->row + shown->at.row};
    }
    const Area line{0, size.rows - 1, size.columns, size.rows};
    auto told = host_line_ ? host_line_(canvas, line) : std::u32string();
    if (told) {
        std::vector<std::u32string> keys;
        if (!windows_.empty()) keys = windows_.back()->window.keys();
        keys.emplace_back(U"Ctrl+C leave");
        // Each key is told once. What there is no room for is left out, the last one never.
        for (const std::u32string& key : keys) {
            if (told->find(key.substr(0, key.find(U' ') + 1)) != told->npos) continue;
            const int kept = &key == &keys.back() ? 0 : text_width(keys.back()) + 3;
            if (text_width(*told) + text_width(key) + kept <= size.columns - 2) *told += key + U"   ";
        }
        canvas.text({1, line.top}, *told, look::kDesktop);
    }
    screen_.show(canvas, cursor);
}

}  // namespace vex::platform::native::terminal
