// The keyboard on a form.
#include <algorithm>

#include "platform/native/terminal/form_window.h"
#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {
namespace {

using forms::Control;
using forms::ControlKind;

constexpr int kColumnStep = 8;
/// Letters that come faster belong together.
constexpr std::chrono::milliseconds kTypingPause{700};

bool has_mnemonic(ControlKind kind) noexcept {
    return kind == ControlKind::button || kind == ControlKind::option_button || kind == ControlKind::check_box;
}

}  // namespace

void FormWindow::handle(const KeyPress& key) {
    owner_.invalidate();
    Control* control = focus();
    if (key.key == Key::character && key.alt) {
        if (!press_mnemonic(key.character)) owner_.beep();
        return;
    }
    switch (key.key) {
        case Key::tab:
            move_focus(1);
            return;
        case Key::back_tab:
            move_focus(-1);
            return;
        case Key::enter:
            press_enter();
            return;
        case Key::escape:
            press_escape();
            return;
        case Key::menu:
            open_menu();
            return;
        default:
            break;
    }
    if (control == nullptr) return;
    if (control->kind() == ControlKind::list_view) {
        handle_key_of(static_cast<forms::ListView&>(*control), key);
        return;
    }
    if (control->kind() == ControlKind::text_box) {
        const PlacedControl* placed = picture_.find(*control);
        if (placed == nullptr) return;
        auto& box = static_cast<forms::TextBox&>(*control);
        std::u32string text;
        TextPane pane(box, placed->cells, look_.texts[&box]);
        if (pane.edit(key, text)) form_.user_text(box, to_utf16(text));
        return;
    }
    const bool option = control->kind() == ControlKind::option_button;
    switch (key.key) {
        case Key::character:
            if (key.character == U' ') {
                press(*control);
            } else if (!press_mnemonic(key.character)) {
                owner_.beep();
            }
            break;
        case Key::up:
        case Key::left:
            option ? move_option(*control, -1) : move_focus(-1);
            break;
        case Key::down:
        case Key::right:
            option ? move_option(*control, 1) : move_focus(1);
            break;
        default:
            break;
    }
}

void FormWindow::press(Control& control) {
    set_focus(control);
    form_.raise_click(control);
}

bool FormWindow::press_mnemonic(char32_t letter) {
    for (Control* control : form_.controls()) {
        if (!has_mnemonic(control->kind()) || !control->enabled() || !control->reachable()) continue;
        const Caption caption = parse_caption(control->caption());
        if (caption.mnemonic && same_letter(caption.text[*caption.mnemonic], letter)) {
            press(*control);
            return true;
        }
    }
    return false;
}

void FormWindow::press_enter() {
    Control* control = focus();
    if (control != nullptr && control->kind() == ControlKind::button) {
        form_.raise_click(*control);
        return;
    }
    for (Control* other : form_.controls()) {
        if (other->kind() == ControlKind::button && static_cast<forms::Button*>(other)->is_default &&
            other->enabled() && other->reachable()) {
            form_.raise_click(*other);
            return;
        }
    }
    owner_.beep();
}

void FormWindow::press_escape() {
    for (Control* control : form_.controls()) {
        if (control->kind() == ControlKind::button && static_cast<forms::Button*>(control)->is_cancel &&
            control->enabled() && control->reachable()) {
            form_.raise_click(*control);
            return;
        }
    }
    form_.raise_close_request();
    if (form_.running()) owner_.beep();
}

void FormWindow::select(forms::ListView& list, std::size_t row) {
    form_.user_selection(list, row);
    if (auto pane = pane_of(list)) pane->reveal(row);
}

bool FormWindow::search(forms::ListView& list, char32_t letter) {
    const auto now = std::chrono::steady_clock::now();
    if (now - typed_at_ > kTypingPause) typed_.clear();
    typed_at_ = now;
    typed_.push_back(letter);
    const std::size_t count = list.row_count();
    // The first letter goes on from the selected row, further ones may keep it.
    const std::size_t start = !list.selected() ? 0 : *list.selected() + (typed_.size() == 1 ? 1 : 0);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t row = (start + i) % count;
        const std::u32string text = to_utf32(list.rows()[row].text);
        if (text.size() >= typed_.size() && std::equal(typed_.begin(), typed_.end(), text.begin(), same_letter)) {
            select(list, row);
            return true;
        }
    }
    return false;
}

void FormWindow::handle_key_of(forms::ListView& list, const KeyPress& key) {
    auto pane = pane_of(list);
    if (!pane) return;
    if (key.key == Key::left) return pane->scroll_columns(-kColumnStep);
    if (key.key == Key::right) return pane->scroll_columns(kColumnStep);
    const bool typing = std::chrono::steady_clock::now() - typed_at_ < kTypingPause;
    if (key.key == Key::character && key.character == U' ' && !typing) return form_.raise_click(list);
    if (list.row_count() == 0) return owner_.beep();
    if (key.key == Key::character) {
        if (!search(list, key.character)) owner_.beep();
        return;
    }
    const auto last = static_cast<std::ptrdiff_t>(list.row_count()) - 1;
    const auto page = static_cast<std::ptrdiff_t>(pane->page());
    // Without a selection the first step forwards meets the first row.
    auto row = list.selected() ? static_cast<std::ptrdiff_t>(*list.selected()) : -1;
    switch (key.key) {
        case Key::up:
            row -= 1;
            break;
        case Key::down:
            row += 1;
            break;
        case Key::page_up:
            row -= page;
            break;
        case Key::page_down:
            row += page;
            break;
        case Key::home:
            row = 0;
            break;
        case Key::end:
            row = last;
            break;
        default:
            return;
    }
    select(list, static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(row, 0, last)));
}

void FormWindow::open_menu() {
    Control* control = focus();
    if (control == nullptr || control->kind() != ControlKind::list_view) return owner_.beep();
    auto& list = static_cast<forms::ListView&>(*control);
    const PlacedControl* placed = picture_.find(list);
    auto pane = pane_of(list);
    if (placed == nullptr || !pane) return;
    // As a right click in the middle of the selected row would.
    if (list.selected()) pane->reveal(*list.selected());
    const int row = list.selected() ? pane->place_of(*list.selected()) : placed->cells.top;
    mouse_press({MouseAction::press, forms::MouseButton::right, {placed->cells.left + 2, row}});
}

}  // namespace vex::platform::native::terminal
