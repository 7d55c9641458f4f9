// The mouse on a form.
#include <utility>

#include "platform/native/terminal/form_window.h"
#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {
namespace {

using forms::Control;
using forms::ControlKind;
using forms::ListView;

constexpr int kWheelRows = 3;

float middle(int cell, forms::Twips per_cell) noexcept {
    return (static_cast<float>(cell) + 0.5F) * static_cast<float>(per_cell);
}

/// `value` strictly between the edges of a stretch.
float inside(float value, forms::Twips start, forms::Twips length) noexcept {
    return std::clamp(value, static_cast<float>(start) + 1, static_cast<float>(start + length) - 1);
}

/// Whether the container is asked what a press here means.
bool part_of_its_panel(const Control& control) noexcept {
    return control.kind() == ControlKind::label || control.kind() == ControlKind::shape;
}

}  // namespace

void FormWindow::turn_wheel(const MouseEvent& event) {
    const PlacedControl* placed = control_at(event.at);
    auto pane = placed == nullptr ? std::nullopt : pane_of(*placed->control);
    if (pane) pane->scroll(event.action == MouseAction::wheel_up ? -kWheelRows : kWheelRows, 0);
}

void FormWindow::mouse_press(const MouseEvent& event) {
    const bool left = event.button == forms::MouseButton::left;
    pressed_ = nullptr;
    pointer_ = event.at;
    close_pressed_ = left && close_box_.contains(event.at);
    const PlacedControl* placed = control_at(event.at);
    if (placed == nullptr || !placed->control->enabled()) return;
    Control& control = *placed->control;
    const Area cells = placed->cells;
    if (auto pane = pane_of(control)) {
        set_focus(control);
        if (event.at.row == cells.top) return;
        if (pane->on_scroll_bar(event.at)) {
            if (left) pane->scroll_to(event.at.row);
            return;
        }
        pressed_row_ = pane->row_at(event.at);
    }
    const bool had_focus = focus() == &control;
    set_focus(control);
    raise_mouse_down(*placed, event);
    // The handler may have changed what stands here.
    if (!left || !control.enabled() || !control.reachable()) return;
    pressed_ = &control;
    if (control.kind() == ControlKind::list_view) {
        auto& list = static_cast<ListView&>(control);
        if (!pressed_row_ || *pressed_row_ >= list.row_count()) {
            pressed_ = nullptr;
        } else {
            form_.user_selection(list, pressed_row_);
        }
    } else if (control.kind() == ControlKind::text_box && had_focus) {
        const std::u32string text = to_utf32(control.caption());
        std::size_t& at = cursor_in(control, text);
        const std::size_t first = first_seen(text, at, cells.width() - 2);
        const int column = std::max(0, event.at.column - cells.left - 1);
        at = first + beginning(std::u32string_view(text).substr(first), column).size();
    }
}

void FormWindow::mouse_release(const MouseEvent& event) {
    const Control* const pressed = std::exchange(pressed_, nullptr);
    if (std::exchange(close_pressed_, false) && close_box_.contains(event.at)) return request_close();
    const PlacedControl* placed = control_at(event.at);
    if (pressed == nullptr || placed == nullptr || placed->control != pressed) return;
    const auto pane = pane_of(*pressed);
    if (pane && pane->row_at(event.at) != pressed_row_) return;
    form_.raise_click(*placed->control);
}

void FormWindow::raise_mouse_down(const PlacedControl& placed, const MouseEvent& event) {
    Control& control = *placed.control;
    const bool part_of_panel = part_of_its_panel(control) && control.parent() != nullptr;
    Control& taker = part_of_panel ? *control.parent() : control;
    const PlacedControl* taker_placed = find(taker);
    // A label on a page.
    if (taker_placed == nullptr) return;
    float x = middle(event.at.column - taker_placed->cells.left, scale_.column);
    float y = middle(event.at.row - taker_placed->cells.top, scale_.row);
    // What the user sees there is what he hits: cells are coarser than twips.
    if (part_of_panel) {
        x = inside(x, control.place().left, control.place().width);
        y = inside(y, control.place().top, control.place().height);
    } else {
        for (const Control* other : form_.controls()) {
            const forms::Rect& at = other->place();
            if (other->parent() == &taker && part_of_its_panel(*other) && x == inside(x, at.left, at.width) &&
                y == inside(y, at.top, at.height)) {
                y = static_cast<float>(at.top + at.height);
            }
        }
    }
    form_.raise_mouse_down(taker, event.button, x, y);
}

}  // namespace vex::platform::native::terminal
