// A form on the terminal while it is shown: its focus and the keyboard.
#include "platform/native/terminal/form_window.h"

#include <utility>

#include "core/unicode.h"
#include "platform/native/terminal/terminal_toolkit.h"

namespace vex::platform::native::terminal {
namespace {

using forms::Control;
using forms::ControlKind;
using forms::ListView;

constexpr int kColumnStep = 8;
constexpr int kLongestHint = 18;

char32_t to_upper(char32_t letter) { return letter < 0x10000 ? vex::to_upper(static_cast<char16_t>(letter)) : letter; }

bool takes_keys(const Control& control) noexcept {
    const ControlKind kind = control.kind();
    return (kind == ControlKind::button || kind == ControlKind::option_button || kind == ControlKind::check_box ||
            kind == ControlKind::text_box || kind == ControlKind::list_view) &&
           control.enabled() && control.reachable();
}

bool takes_focus(const Control& control) noexcept { return control.tab_index() >= 0 && takes_keys(control); }

bool same_group(const Control& left, const Control& right) noexcept {
    return right.kind() == ControlKind::option_button && left.kind() == ControlKind::option_button &&
           left.parent() == right.parent() && left.page() == right.page();
}

/// In the keyboard order. A group of option buttons is one stop: the chosen one, or the first where none is.
std::vector<Control*> tab_stops(const forms::Form& form) {
    std::vector<Control*> stops;
    for (Control* control : form.keyboard_order()) {
        if (!takes_focus(*control)) continue;
        const auto stop =
            std::ranges::find_if(stops, [&](const Control* other) { return same_group(*control, *other); });
        if (stop == stops.end()) {
            stops.push_back(control);
        } else if (static_cast<forms::OptionButton*>(control)->value()) {
            *stop = control;
        }
    }
    return stops;
}

/// The button that Enter or Esc presses, wherever the focus is.
forms::Button* button_with(const forms::Form& form, bool forms::Button::*flag) {
    for (Control* control : form.controls()) {
        if (control->kind() != ControlKind::button || !takes_keys(*control)) continue;
        auto& button = static_cast<forms::Button&>(*control);
        if (button.*flag) return &button;
    }
    return nullptr;
}

/// In upper case, the letter that presses a control that takes keys; 0: none.
char32_t mnemonic_of(const Control& control) {
    if (!takes_keys(control) || control.kind() == ControlKind::text_box) return 0;
    const Caption caption = parse_caption(control.caption());
    return caption.mnemonic ? to_upper(caption.text[*caption.mnemonic]) : 0;
}

std::u32string hint(const std::u32string& key, const Control& control) {
    return key + U" " + shorten(parse_caption(control.caption()).text, kLongestHint);
}

Control* first_focus(const forms::Form& form) {
    const std::vector<Control*> stops = tab_stops(form);
    const auto on_page = std::find_if(stops.begin(), stops.end(), [](const Control* stop) {
        while (stop->page() < 0 && stop->parent() != nullptr) stop = stop->parent();
        return stop->page() >= 0;
    });
    if (on_page != stops.end()) return *on_page;
    const bool pages = std::ranges::count(form.controls(), ControlKind::tab_pages, &Control::kind) > 0;
    Control* const standard = pages ? button_with(form, &forms::Button::is_default) : nullptr;
    return standard != nullptr || stops.empty() ? standard : stops.front();
}

}  // namespace

FormWindow::FormWindow(forms::Form& form, TerminalToolkit& toolkit)
    : form_(form), toolkit_(toolkit), view_before_(form.view()) {
    form_.set_view(this);
}

FormWindow::~FormWindow() { form_.set_view(view_before_); }

void FormWindow::changed(Control& control, forms::Change change) {
    if (change == forms::Change::tab) focus_ = nullptr;
    if (control.kind() == ControlKind::text_box) cursors_.erase(&control);
    if (control.kind() == ControlKind::list_view) {
        const auto& list = static_cast<const ListView&>(control);
        if (change == forms::Change::selection) lists_[&list].wanted = list.selected();
        // Work goes on there; the user may follow it.
        if (change == forms::Change::row && !handling_) lists_[&list].wanted = list.changed_row();
    }
    toolkit_.invalidate();
}

void FormWindow::refresh(Control& /*control*/) { toolkit_.draw_now(); }

forms::Twips FormWindow::row_top(const ListView& list, std::size_t row) const {
    const auto pane = pane_of(list);
    return pane ? (pane->place_of(row) - find(list)->cells.top) * scale_.row : 0;
}

const PlacedControl* FormWindow::control_at(Point at) const noexcept {
    const auto found = std::find_if(controls_.rbegin(), controls_.rend(), [at](const PlacedControl& placed) {
        return placed.cells.contains(at) && placed.clip.contains(at) && placed.control->kind() != ControlKind::line;
    });
    return found == controls_.rend() ? nullptr : &*found;
}

const PlacedControl* FormWindow::find(const Control& control) const noexcept {
    const auto found = std::ranges::find(controls_, &control, &PlacedControl::control);
    return found == controls_.end() ? nullptr : &*found;
}

std::size_t& FormWindow::cursor_in(const Control& box, std::u32string_view text) {
    std::size_t& at = cursors_.try_emplace(&box, text.size()).first->second;
    return at = std::min(at, text.size());
}

std::optional<ListPane> FormWindow::pane_of(const Control& list) const {
    const PlacedControl* placed = find(list);
    if (placed == nullptr || list.kind() != ControlKind::list_view) return std::nullopt;
    return ListPane(static_cast<const ListView&>(list), placed->cells, scale_, lists_[&list]);
}

// ---- The focus ----------------------------------------------------------------------------------------

Control* FormWindow::focus() {
    if (focus_ == nullptr || !takes_focus(*focus_)) focus_ = first_focus(form_);
    return focus_;
}

void FormWindow::set_focus(Control& control) noexcept {
    if (takes_focus(control)) focus_ = &control;
}

void FormWindow::move_focus(int direction) {
    const std::vector<Control*> stops = tab_stops(form_);
    const Control* current = focus();
    if (current == nullptr) return;
    const auto found = std::ranges::find_if(
        stops, [&](const Control* stop) { return stop == current || same_group(*current, *stop); });
    const auto count = std::ssize(stops);
    set_focus(*stops[static_cast<std::size_t>((found - stops.begin() + direction + count) % count)]);
}

void FormWindow::move_option(Control& option, int direction) {
    std::vector<Control*> group;
    for (Control* control : form_.controls()) {
        if (same_group(option, *control) && takes_focus(*control)) group.push_back(control);
    }
    const auto count = std::ssize(group);
    const std::ptrdiff_t at = std::find(group.begin(), group.end(), &option) - group.begin();
    Control& next = *group[static_cast<std::size_t>((at + direction + count) % count)];
    set_focus(next);
    form_.raise_click(next);
}

std::vector<std::u32string> FormWindow::keys() {
    std::vector<std::u32string> hints;
    const Control* control = focus();
    const Control* pressed = button_of_enter();
    if (pressed != nullptr) hints.push_back(hint(U"Enter", *pressed));
    if (control != nullptr && control->kind() == ControlKind::check_box) hints.emplace_back(U"Space check");
    if (control != nullptr && control->kind() == ControlKind::option_button) hints.emplace_back(U"↑↓ choose");
    if (control != nullptr && control->kind() == ControlKind::list_view) {
        const auto& list = static_cast<const ListView&>(*control);
        if (list.selected() && control->on_click) hints.emplace_back(U"Space choose");
        if (list.row_count() > 1) hints.emplace_back(U"↑↓ move");
    }
    if (list_with_menu() != nullptr) hints.emplace_back(U"F10 menu");
    for (const Control* other : form_.controls()) {
        const char32_t letter = mnemonic_of(*other);
        if (letter != 0 && other != pressed) hints.push_back(hint(std::u32string(U"Alt+") + letter, *other));
    }
    if (const Control* cancel = button_with(form_, &forms::Button::is_cancel)) hints.push_back(hint(U"Esc", *cancel));
    if (tab_stops(form_).size() > 1) hints.emplace_back(U"Tab next");
    return hints;
}

// ---- The keyboard -------------------------------------------------------------------------------------

void FormWindow::handle(const Input& input) {
    toolkit_.invalidate();
    const bool outer = std::exchange(handling_, true);
    if (const auto* key = std::get_if<KeyPress>(&input)) press_key(*key);
    if (const auto* paste = std::get_if<Paste>(&input)) insert(paste->text);
    if (const auto* mouse = std::get_if<MouseEvent>(&input)) {
        const bool wheel = mouse->action == MouseAction::wheel_up || mouse->action == MouseAction::wheel_down;
        wheel ? turn_wheel(*mouse) : mouse->action == MouseAction::press ? mouse_press(*mouse) : mouse_release(*mouse);
    }
    handling_ = outer;
}

void FormWindow::insert(std::u32string text) {
    Control* control = focus();
    if (control == nullptr || control->kind() != ControlKind::text_box) return;
    // A text box has one line.
    std::erase_if(text, [](char32_t character) { return character < U' '; });
    std::u32string line = to_utf32(control->caption());
    std::size_t& at = cursor_in(*control, line);
    line.insert(at, text);
    at += text.size();
    form_.user_text(static_cast<forms::TextBox&>(*control), to_utf16(line));
}

void FormWindow::press_key(const KeyPress& key) {
    if (key.key == Key::character && key.alt) return press_mnemonic(key.character);
    if (key.key == Key::tab) return move_focus(1);
    if (key.key == Key::back_tab) return move_focus(-1);
    if (key.key == Key::enter) {
        Control* const pressed = button_of_enter();
        return pressed == nullptr ? toolkit_.beep() : form_.raise_click(*pressed);
    }
    if (key.key == Key::escape) {
        Control* const cancel = button_with(form_, &forms::Button::is_cancel);
        return cancel == nullptr ? request_close() : form_.raise_click(*cancel);
    }
    if (key.key == Key::menu) return open_menu();
    Control* control = focus();
    if (control == nullptr) return;
    if (control->kind() == ControlKind::list_view) return move_in(static_cast<ListView&>(*control), key);
    if (control->kind() == ControlKind::text_box && edit(static_cast<forms::TextBox&>(*control), key)) return;
    const bool forth = key.key == Key::down || key.key == Key::right;
    if (forth || key.key == Key::up || key.key == Key::left) {
        const int direction = forth ? 1 : -1;
        control->kind() == ControlKind::option_button ? move_option(*control, direction) : move_focus(direction);
    } else if (key.key == Key::character) {
        key.character == U' ' ? form_.raise_click(*control) : press_mnemonic(key.character);
    }
}

void FormWindow::press_mnemonic(char32_t letter) {
    for (Control* control : form_.controls()) {
        if (mnemonic_of(*control) != to_upper(letter)) continue;
        // Who presses a button from elsewhere goes on there.
        if (control->kind() != ControlKind::button) set_focus(*control);
        return form_.raise_click(*control);
    }
    toolkit_.beep();
}

/// The one with the focus, or the default one.
Control* FormWindow::button_of_enter() {
    Control* const control = focus();
    const bool button = control != nullptr && control->kind() == ControlKind::button;
    return button ? control : button_with(form_, &forms::Button::is_default);
}

void FormWindow::request_close() {
    form_.raise_close_request();
    if (form_.running()) toolkit_.beep();
}

bool FormWindow::edit(forms::TextBox& box, const KeyPress& key) {
    std::u32string text = to_utf32(box.text());
    std::size_t& at = cursor_in(box, text);
    switch (key.key) {
        case Key::character: text.insert(at++, 1, key.character); break;
        case Key::backspace:
            if (at > 0) text.erase(--at, 1);
            break;
        case Key::remove:
            if (at < text.size()) text.erase(at, 1);
            break;
        case Key::left: at -= at > 0 ? 1 : 0; break;
        case Key::right: at += at < text.size() ? 1 : 0; break;
        case Key::home: at = 0; break;
        case Key::end: at = text.size(); break;
        default: return false;
    }
    form_.user_text(box, to_utf16(text));
    return true;
}

void FormWindow::move_in(ListView& list, const KeyPress& key) {
    auto pane = pane_of(list);
    if (!pane) return;
    if (key.key == Key::left) return pane->scroll(0, -kColumnStep);
    if (key.key == Key::right) return pane->scroll(0, kColumnStep);
    if (key.key == Key::character && key.character != U' ') {
        // Letters belong into the field that says what the list shows.
        for (Control* control : form_.controls()) {
            if (control->kind() != ControlKind::text_box || !takes_focus(*control)) continue;
            set_focus(*control);
            edit(static_cast<forms::TextBox&>(*control), key);
            return;
        }
    }
    if (list.row_count() == 0) return toolkit_.beep();
    // Space acts on the row, which must be one.
    if (key.key == Key::character)
        return key.character == U' ' && list.selected() ? form_.raise_click(list) : toolkit_.beep();
    const int last = static_cast<int>(list.row_count()) - 1;
    // Without a selection the first step forwards meets the first row.
    int row = list.selected() ? static_cast<int>(*list.selected()) : -1;
    switch (key.key) {
        case Key::up: row -= 1; break;
        case Key::down: row += 1; break;
        case Key::page_up: row -= pane->page(); break;
        case Key::page_down: row += pane->page(); break;
        case Key::home: row = 0; break;
        case Key::end: row = last; break;
        default: return;
    }
    const auto chosen = static_cast<std::size_t>(std::clamp(row, 0, last));
    lists_[&list].wanted = chosen;
    form_.user_selection(list, chosen);
}

/// The list that a context menu may be asked of: the one with the focus, or the first.
ListView* FormWindow::list_with_menu() {
    ListView* found = nullptr;
    for (Control* control : form_.controls()) {
        if (control->kind() != ControlKind::list_view || !takes_keys(*control) || !control->on_mouse_down) continue;
        auto* list = static_cast<ListView*>(control);
        if (list->row_count() > 0 && (found == nullptr || control == focus())) found = list;
    }
    return found;
}

void FormWindow::open_menu() {
    ListView* const list = list_with_menu();
    if (list == nullptr) return toolkit_.beep();
    set_focus(*list);
    // As a right click on the selected row would; where none is, on the first that is marked red as failed.
    const auto& rows = list->rows();
    const auto failed = std::ranges::find(rows, forms::kRed, &forms::ListRow::fore_color);
    const auto first = failed == rows.end() ? 0 : static_cast<std::size_t>(failed - rows.begin());
    const std::size_t row = list->selected().value_or(first);
    lists_[list].wanted = row;
    const auto pane = pane_of(*list);
    if (!pane) return;
    mouse_press({MouseAction::press, forms::MouseButton::right, {find(*list)->cells.left + 2, pane->place_of(row)}});
}

}  // namespace vex::platform::native::terminal
