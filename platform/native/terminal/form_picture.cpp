// A form drawn on the character grid.
#include "platform/native/terminal/form_picture.h"

#include <algorithm>

#include "platform/native/terminal/colors.h"
#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {
namespace {

using forms::Control;
using forms::ControlKind;

/// How full a shape is drawn, so that its colour can be told on screens without colours.
char32_t shade(forms::Color color) noexcept {
    const forms::Color strongest = std::max({color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF});
    return strongest >= 192 ? U'█' : strongest >= 96 ? U'▒' : U'░';
}

class FormPainter {
public:
    FormPainter(const forms::Form& form, FormLook& look, const IconCharacters& icons)
        : form_(form),
          look_(look),
          icons_(icons),
          picture_{Canvas(frame_size(form, look.scale), {look::kText, look::kFace}), {}, {}, std::nullopt} {}

    FormPicture draw() {
        draw_frame();
        picture_.controls = lay_out(form_, look_.scale);
        const Area frame = picture_.canvas.area();
        const ClipScope inside(picture_.canvas, {1, 1, frame.right - 1, frame.bottom - 1});
        for (PlacedControl& placed : picture_.controls) {
            shift(placed.cells);
            shift(placed.clip);
            const ClipScope clip(picture_.canvas, placed.clip);
            draw_control(placed);
        }
        return std::move(picture_);
    }

private:
    /// From the client area into the frame.
    static void shift(Area& area) noexcept { area = {area.left + 1, area.top + 1, area.right + 1, area.bottom + 1}; }

    bool focused(const Control& control) const noexcept { return look_.active && look_.focus == &control; }

    void draw_frame() {
        Canvas& canvas = picture_.canvas;
        const Area area = canvas.area();
        const forms::Color color = look_.active ? look::kTitle : look::kIdleTitle;
        canvas.fill({0, 0, area.right, 1}, {look::kTitleText, color});
        canvas.frame(area, color);
        const Ink ink{.fore = look::kTitleText, .bold = look_.active, .standout = look_.active};
        const std::u32string title = shorten(to_utf32(form_.caption()), area.width() - 10);
        if (!title.empty()) canvas.text({2, 0}, U" " + title + U" ", ink);
        picture_.close_box = {area.right - 5, 0, area.right - 2, 1};
        canvas.text({picture_.close_box.left, 0}, U"[x]", ink);
    }

    void draw_control(const PlacedControl& placed) {
        Control& control = *placed.control;
        switch (control.kind()) {
            case ControlKind::label:
                draw_label(placed);
                break;
            case ControlKind::button:
                draw_button(placed);
                break;
            case ControlKind::option_button:
                draw_choice(placed, static_cast<const forms::OptionButton&>(control).value() ? U'•' : U' ', U"()");
                break;
            case ControlKind::check_box:
                draw_choice(placed, static_cast<const forms::CheckBox&>(control).value() != 0 ? U'x' : U' ', U"[]");
                break;
            case ControlKind::text_box:
                draw_text_box(placed);
                break;
            case ControlKind::list_view:
                draw_list(placed);
                break;
            case ControlKind::panel:
                draw_background(placed);
                break;
            case ControlKind::shape:
                draw_shape(placed);
                break;
            case ControlKind::line:
                draw_line(placed);
                break;
            case ControlKind::tab_pages:
            case ControlKind::host_control:
                break;
        }
    }

    void draw_background(const PlacedControl& placed) {
        const auto back = placed.control->back_color();
        if (back) picture_.canvas.fill(placed.cells, {look::kText, *back});
    }

    static Ink ink_of(const Control& control) {
        Ink ink{.fore = control.enabled() ? control.fore_color() : look::kFaint};
        ink.bold = control.font().bold || control.font().points >= 12;
        return ink;
    }

    void draw_lines(const PlacedControl& placed, int column, const Ink& ink) {
        int row = placed.cells.top;
        for (const std::u32string& line : placed.lines) picture_.canvas.text({column, row++}, line, ink);
    }

    void draw_label(const PlacedControl& placed) {
        draw_background(placed);
        draw_lines(placed, placed.cells.left, ink_of(*placed.control));
    }

    /// Underlines the mnemonic, which stands in the first line where it is seen at all.
    void draw_mnemonic(const PlacedControl& placed, int column, const Ink& ink) {
        const Caption caption = parse_caption(placed.control->caption());
        if (!caption.mnemonic || placed.lines.empty() || *caption.mnemonic >= placed.lines.front().size()) return;
        Ink underlined = ink;
        underlined.underline = true;
        const std::u32string_view line = placed.lines.front();
        const int before = text_width(line.substr(0, *caption.mnemonic));
        picture_.canvas.text({column + before, placed.cells.top}, line.substr(*caption.mnemonic, 1), underlined);
    }

    /// In brackets; the focus makes arrows of them, and a button that is disabled has none.
    void draw_button(const PlacedControl& placed) {
        const auto& button = static_cast<const forms::Button&>(*placed.control);
        const bool has_focus = focused(button);
        Ink ink = ink_of(button);
        ink.back = has_focus ? look::kFocus : look::kButton;
        if (has_focus) ink.fore = look::kFocusText;
        ink.bold = ink.bold || button.is_default || has_focus;
        ink.standout = has_focus;
        Canvas& canvas = picture_.canvas;
        canvas.fill(placed.cells, {ink.fore, *ink.back, ink.bold, false, ink.standout});
        const std::u32string caption =
            placed.lines.empty() ? U"" : shorten(placed.lines.front(), placed.cells.width() - 2);
        const int column = placed.cells.left + 1 + (placed.cells.width() - 2 - text_width(caption)) / 2;
        const int row = placed.cells.top;
        canvas.text({column, row}, caption, ink);
        if (button.enabled()) {
            draw_mnemonic(placed, column, ink);
            canvas.text({placed.cells.left, row}, has_focus ? U"▸" : U"[", ink);
            canvas.text({placed.cells.right - 1, row}, has_focus ? U"◂" : U"]", ink);
        }
        if (has_focus) picture_.cursor = Point{column, row};
    }

    /// An option button or a check box: a mark in brackets, which the focus makes arrows of.
    void draw_choice(const PlacedControl& placed, char32_t mark, std::u32string_view brackets) {
        const Control& control = *placed.control;
        const bool has_focus = focused(control);
        const Ink ink = ink_of(control);
        Ink mark_ink = ink;
        std::u32string text{brackets[0], mark, brackets[1]};
        if (has_focus) {
            mark_ink = {.fore = look::kFocusText, .back = look::kFocus, .bold = true, .standout = true};
            text = {U'▸', mark, U'◂'};
            picture_.cursor = Point{placed.cells.left + 1, placed.cells.top};
        }
        const int column = picture_.canvas.text({placed.cells.left, placed.cells.top}, text, mark_ink) + 1;
        draw_lines(placed, column, ink);
        draw_mnemonic(placed, column, ink);
    }

    void draw_text_box(const PlacedControl& placed) {
        const auto& box = static_cast<const forms::TextBox&>(*placed.control);
        const TextPane pane(box, placed.cells, look_.texts[&box]);
        pane.paint(picture_.canvas, focused(box));
        if (focused(box)) picture_.cursor = pane.cursor_place();
    }

    void draw_list(const PlacedControl& placed) {
        const auto& list = static_cast<const forms::ListView&>(*placed.control);
        const ListPane pane(list, placed.cells, look_.scale, look_.lists[&list]);
        pane.paint(picture_.canvas, focused(list), icons_);
        if (!focused(list)) return;
        const int row = list.selected() ? pane.place_of(*list.selected()) : placed.cells.top;
        if (row >= placed.cells.top && row < placed.cells.bottom) picture_.cursor = Point{placed.cells.left, row};
    }

    void draw_shape(const PlacedControl& placed) {
        const forms::Color color = static_cast<const forms::Shape&>(*placed.control).fill_color();
        picture_.canvas.block(placed.cells, color, shade(color));
    }

    void draw_line(const PlacedControl& placed) {
        const auto& line = static_cast<const forms::Line&>(*placed.control);
        picture_.canvas.line({placed.cells.left, placed.cells.top}, {placed.cells.right - 1, placed.cells.bottom - 1},
                             line.etched ? look::kFaint : line.fore_color());
    }

    const forms::Form& form_;
    FormLook& look_;
    const IconCharacters& icons_;
    FormPicture picture_;
};

}  // namespace

const PlacedControl* FormPicture::control_at(Point at) const noexcept {
    const auto found = std::find_if(controls.rbegin(), controls.rend(), [at](const PlacedControl& placed) {
        return placed.cells.contains(at) && placed.clip.contains(at) && placed.control->kind() != ControlKind::line;
    });
    return found == controls.rend() ? nullptr : &*found;
}

const PlacedControl* FormPicture::find(const forms::Control& control) const noexcept {
    const auto found = std::find_if(controls.begin(), controls.end(),
                                    [&control](const PlacedControl& placed) { return placed.control == &control; });
    return found == controls.end() ? nullptr : &*found;
}

Size frame_size(const forms::Form& form, const Scale& scale) noexcept {
    const Size client = client_size(form, scale);
    return {client.columns + 2, client.rows + 2};
}

FormPicture draw_form(const forms::Form& form, FormLook& look, const IconCharacters& icons) {
    return FormPainter(form, look, icons).draw();
}

}  // namespace vex::platform::native::terminal
