// The mouse on a form.
#include <algorithm>
#include <utility>

#include "platform/native/terminal/form_window.h"

namespace vex::platform::native::terminal {
namespace {

using forms::Control;
using forms::ControlKind;
using forms::Rect;

constexpr std::ptrdiff_t kWheelRows = 3;

float middle(int cell, forms::Twips per_cell) noexcept {
    return (static_cast<float>(cell) + 0.5F) * static_cast<float>(per_cell);
}

/// `value` strictly between the edges of a stretch.
float inside(float value, forms::Twips start, forms::Twips length) noexcept {
    return std::clamp(value, static_cast<float>(start) + 1, static_cast<float>(start + length) - 1);
}

bool strictly_within(float x, float y, const Rect& at) noexcept {
    return x > static_cast<float>(at.left) && x < static_cast<float>(at.left + at.width) &&
           y > static_cast<float>(at.top) && y < static_cast<float>(at.top + at.height);
}

/// Whether the container is asked what a press here means.
bool part_of_its_panel(const Control& control) noexcept {
    return control.kind() == ControlKind::label || control.kind() == ControlKind::shape;
}

bool clickable(ControlKind kind) noexcept {
    return kind == ControlKind::button || kind == ControlKind::option_button || kind == ControlKind::check_box ||
           kind == ControlKind::list_view || kind == ControlKind::label || kind == ControlKind::panel;
}

}  // namespace

void FormWindow::handle(const MouseEvent& event) {
    owner_.invalidate();
    switch (event.action) {
        case MouseAction::press:
            mouse_press(event);
            break;
        case MouseAction::release:
            mouse_release(event);
            break;
        case MouseAction::wheel_up:
        case MouseAction::wheel_down:
            mouse_wheel(event);
            break;
    }
}

void FormWindow::mouse_press(const MouseEvent& event) {
    pressed_ = nullptr;
    pointer_ = event.at;
    close_pressed_ = event.button == forms::MouseButton::left && picture_.close_box.contains(event.at);
    const PlacedControl* placed = picture_.control_at(event.at);
    if (placed == nullptr || !placed->control->enabled()) return;
    Control& control = *placed->control;
    const Area cells = placed->cells;
    set_focus(control);
    raise_mouse_down(*placed, event);
    // The handler may have changed what stands here.
    if (!control.enabled() || !control.reachable()) return;
    if (event.button != forms::MouseButton::left) return;
    if (control.kind() == ControlKind::text_box) {
        auto& box = static_cast<forms::TextBox&>(control);
        TextPane(box, cells, look_.texts[&box]).place_cursor(event.at.column);
    }
    if (control.kind() == ControlKind::list_view) press_list(static_cast<forms::ListView&>(control), event);
    if (clickable(control.kind())) pressed_ = &control;
}

void FormWindow::mouse_release(const MouseEvent& event) {
    const Control* pressed = std::exchange(pressed_, nullptr);
    if (std::exchange(close_pressed_, false) && picture_.close_box.contains(event.at)) {
        form_.raise_close_request();
        if (form_.running()) owner_.beep();
        return;
    }
    const PlacedControl* placed = picture_.control_at(event.at);
    if (pressed == nullptr || placed == nullptr || placed->control != pressed) return;
    form_.raise_click(*placed->control);
}

void FormWindow::mouse_wheel(const MouseEvent& event) {
    const PlacedControl* placed = picture_.control_at(event.at);
    if (placed == nullptr || placed->control->kind() != ControlKind::list_view) return;
    if (auto pane = pane_of(static_cast<const forms::ListView&>(*placed->control))) {
        pane->scroll_rows(event.action == MouseAction::wheel_up ? -kWheelRows : kWheelRows);
    }
}

void FormWindow::press_list(forms::ListView& list, const MouseEvent& event) {
    auto pane = pane_of(list);
    if (!pane) return;
    if (pane->on_scroll_bar(event.at)) {
        // A press on the bar goes to that part of the list.
        const PlacedControl* placed = picture_.find(list);
        const auto offset = static_cast<std::size_t>(event.at.row - placed->cells.top - 1);
        const std::size_t top = list.row_count() * offset / std::max<std::size_t>(1, pane->page() - 1);
        pane->scroll_rows(static_cast<std::ptrdiff_t>(top) - static_cast<std::ptrdiff_t>(look_.lists[&list].top));
        return;
    }
    if (const auto row = pane->row_at(event.at.row)) form_.user_selection(list, row);
}

void FormWindow::raise_mouse_down(const PlacedControl& placed, const MouseEvent& event) {
    Control& control = *placed.control;
    const bool part_of_panel = part_of_its_panel(control);
    Control* const taker = part_of_panel && control.parent() != nullptr ? control.parent() : &control;
    const PlacedControl* taker_placed = picture_.find(*taker);
    // A label on the form itself or on a page.
    if (taker_placed == nullptr) return;
    float x = middle(event.at.column - taker_placed->cells.left, look_.scale.column);
    float y = middle(event.at.row - taker_placed->cells.top, look_.scale.row);
    // What the user sees there is what he hits: cells are coarser than twips.
    if (part_of_panel) {
        const Rect& at = control.place();
        x = inside(x, at.left, at.width);
        y = inside(y, at.top, at.height);
    } else {
        for (const Control* other : form_.controls()) {
            if (other->parent() == taker && part_of_its_panel(*other) && other->reachable() &&
                strictly_within(x, y, other->place())) {
                y = static_cast<float>(other->place().top + other->place().height);
            }
        }
    }
    form_.raise_mouse_down(*taker, event.button, x, y);
}

}  // namespace vex::platform::native::terminal
