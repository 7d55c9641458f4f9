// How a form looks on the terminal.
#include "platform/native/terminal/form_window.h"
#include "platform/native/terminal/terminal_toolkit.h"
#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {
namespace {

using forms::Control;
using forms::ControlKind;

Style style_of(const Control& control) {
    return {.fore = control.enabled() ? color_of(control.fore_color()) : look::kFaint,
            .bold = control.font().bold || control.font().points >= 12};
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

}  // namespace vex::platform::native::terminal
