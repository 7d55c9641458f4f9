// How a form looks on the terminal, and what the mouse meets there.
#include <utility>

#include "platform/native/terminal/form_window.h"
#include "platform/native/terminal/terminal_toolkit.h"

namespace vex::platform::native::terminal {
namespace {

using forms::Control;
using forms::ControlKind;

Style style_of(const Control& control) {
    return {.fore = control.enabled() ? color_of(control.fore_color()) : look::kFaint,
            .bold = control.font().bold || control.font().points >= 12};
}

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

void FormWindow::draw(const Scale& scale, bool active) {
    scale_ = scale;
    active_ = active;
    focus();
    const Size client = client_size(form_, scale);
    canvas_ = Canvas({client.columns + 2, client.rows + 2}, look::kFace);
    cursor_.reset();
    draw_frame();
    controls_ = lay_out(form_, scale);
    const Area inside = canvas_.area().meet({1, 1, client.columns + 1, client.rows + 1});
    for (PlacedControl& placed : controls_) {
        // From the client area into the frame.
        placed.cells = placed.cells.moved({1, 1});
        placed.clip = placed.clip.moved({1, 1}).meet(inside);
        canvas_.set_clip(placed.clip);
        draw_control(placed);
    }
}

void FormWindow::draw_frame() {
    const Area area = canvas_.area();
    const Style& title = active_ ? look::kTitle : look::kIdleTitle;
    const Style edge{.fore = active_ ? look::kTitle.back : look::kFaint};
    const std::u32string line(static_cast<std::size_t>(area.width() - 2), U'─');
    canvas_.fill(area, edge, U'│');
    canvas_.fill({1, 1, area.right - 1, area.bottom - 1}, look::kFace);
    canvas_.text({0, 0}, U"┌" + line + U"┐", title);
    canvas_.text({0, area.bottom - 1}, U"└" + line + U"┘", edge);
    const std::u32string text = shorten(to_utf32(form_.caption()), area.width() - 10);
    if (!text.empty()) canvas_.text({2, 0}, U" " + text + U" ", title);
    close_box_ = {area.right - 5, 0, area.right - 2, 1};
    canvas_.text({close_box_.left, 0}, U"[x]", title);
}

void FormWindow::draw_control(const PlacedControl& placed) {
    const Control& control = *placed.control;
    const Area& cells = placed.cells;
    switch (control.kind()) {
        case ControlKind::label:
        case ControlKind::panel:
            if (control.back_color()) canvas_.fill(cells, {.back = color_of(*control.back_color())});
            return draw_text(placed, cells.left, style_of(control));
        case ControlKind::button: return draw_button(placed);
        case ControlKind::option_button:
            return draw_choice(placed, U"()", static_cast<const forms::OptionButton&>(control).value() ? U"•" : U" ");
        case ControlKind::check_box:
            return draw_choice(placed, U"[]", static_cast<const forms::CheckBox&>(control).value() != 0 ? U"x" : U" ");
        case ControlKind::text_box: return draw_text_box(placed);
        case ControlKind::list_view: return draw_list(placed);
        case ControlKind::shape: {
            // Full or not, so that nodes can be told apart on screens without colours.
            const Color color = color_of(static_cast<const forms::Shape&>(control).fill_color());
            return canvas_.fill(cells, {.fore = color}, color == Color::bright_green ? U'█' : U'▒');
        }
        case ControlKind::line: {
            const bool etched = static_cast<const forms::Line&>(control).etched;
            return canvas_.line({cells.left, cells.top}, {cells.right - 1, cells.bottom - 1},
                                etched ? look::kFaint : color_of(control.fore_color()));
        }
        default: return;
    }
}

/// The control's lines, with the mnemonic underlined: it stands in the first one where it is seen at all.
void FormWindow::draw_text(const PlacedControl& placed, int column, Style style) {
    int row = placed.cells.top;
    for (const std::u32string& line : placed.lines) canvas_.text({column, row++}, line, style);
    const Control& control = *placed.control;
    const Caption caption = parse_caption(control.caption());
    if (control.kind() == ControlKind::label || !control.enabled() || !caption.mnemonic) return;
    const std::u32string_view line = placed.lines.front();
    if (*caption.mnemonic >= line.size()) return;
    style.underline = true;
    const int before = text_width(line.substr(0, *caption.mnemonic));
    canvas_.text({column + before, placed.cells.top}, line.substr(*caption.mnemonic, 1), style);
}

/// The brackets around what can have the focus, which makes arrows of them.
void FormWindow::draw_brackets(const Control& control, const Area& around, std::u32string_view brackets) {
    const bool has_focus = focused(control);
    const Style style = has_focus ? look::kFocus : style_of(control);
    canvas_.text({around.left, around.top}, has_focus ? U"▸" : brackets.substr(0, 1), style);
    canvas_.text({around.right - 1, around.top}, has_focus ? U"◂" : brackets.substr(1, 1), style);
}

void FormWindow::draw_button(const PlacedControl& placed) {
    const auto& button = static_cast<const forms::Button&>(*placed.control);
    const Area& cells = placed.cells;
    Style style = focused(button) ? look::kFocus : style_of(button);
    style.bold = style.bold || button.is_default;
    canvas_.fill(cells, style);
    const int column = cells.left + 1 + (cells.width() - 2 - text_width(placed.lines.front())) / 2;
    draw_text(placed, column, style);
    if (button.enabled()) draw_brackets(button, cells, U"[]");
    if (focused(button)) cursor_ = Point{column, cells.top};
}

/// An option button or a check box.
void FormWindow::draw_choice(const PlacedControl& placed, std::u32string_view brackets, std::u32string_view mark) {
    const Control& control = *placed.control;
    const Area& cells = placed.cells;
    const Style style = style_of(control);
    draw_brackets(control, {cells.left, cells.top, cells.left + 3, cells.top + 1}, brackets);
    canvas_.text({cells.left + 1, cells.top}, mark, focused(control) ? look::kFocus : style);
    draw_text(placed, cells.left + 4, style);
    if (focused(control)) cursor_ = Point{cells.left + 1, cells.top};
}

void FormWindow::draw_text_box(const PlacedControl& placed) {
    const Control& box = *placed.control;
    const Area& cells = placed.cells;
    Style style = box.enabled() ? look::kField : look::kFace;
    style.fore = style_of(box).fore;
    style.underline = true;
    canvas_.fill(cells, style);
    const std::u32string text = to_utf32(box.caption());
    const int width = cells.width() - 2;
    if (focused(box)) {
        const std::size_t at = cursor_in(box, text);
        const std::size_t first = first_seen(text, at, width);
        const std::u32string_view seen = std::u32string_view(text).substr(first);
        canvas_.text({cells.left + 1, cells.top}, beginning(seen, width), style);
        cursor_ = Point{cells.left + 1 + text_width(seen.substr(0, at - first)), cells.top};
    } else {
        // The end of a path says more than its beginning.
        canvas_.text({cells.left + 1, cells.top}, shorten(text, width, Cut::start), style);
    }
    draw_brackets(box, cells, U"[]");
}

void FormWindow::draw_list(const PlacedControl& placed) {
    const auto& list = static_cast<const forms::ListView&>(*placed.control);
    const Area& cells = placed.cells;
    const ListPane pane(list, cells, scale_, lists_[&list]);
    canvas_.set_clip(placed.clip.meet(cells));
    pane.paint(canvas_, focused(list), toolkit_.icons());
    const int row = list.selected() ? pane.place_of(*list.selected()) : cells.top;
    if (focused(list) && row >= cells.top && row < cells.bottom) cursor_ = Point{cells.left, row};
}

// ---- The mouse ----------------------------------------------------------------------------------------

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
        auto& list = static_cast<forms::ListView&>(control);
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
