// A form drawn on the character grid.
#include "platform/native/terminal/form_picture.h"

#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {
namespace {

using forms::Control;
using forms::ControlKind;

class FormPainter {
public:
    FormPainter(const forms::Form& form, FormLook& look, const IconCharacters& icons)
        : form_(form), look_(look), icons_(icons) {
        picture_.canvas = Canvas(frame_size(form, look.scale), look::kFace);
    }

    FormPicture draw() {
        draw_frame();
        picture_.controls = lay_out(form_, look_.scale);
        const Area frame = canvas_.area();
        for (PlacedControl& placed : picture_.controls) {
            // From the client area into the frame.
            placed.cells = placed.cells.moved({1, 1});
            placed.clip = placed.clip.moved({1, 1}).meet({1, 1, frame.right - 1, frame.bottom - 1});
            canvas_.set_clip(placed.control->kind() == ControlKind::list_view ? placed.clip.meet(placed.cells)
                                                                              : placed.clip);
            draw_control(placed);
        }
        return std::move(picture_);
    }

private:
    bool focused(const Control& control) const noexcept { return look_.active && look_.focus == &control; }

    void draw_frame() {
        const Area area = canvas_.area();
        const Style& title = look_.active ? look::kTitle : look::kIdleTitle;
        canvas_.frame(area, look_.active ? look::kTitle.back : look::kFaint);
        const std::u32string line(static_cast<std::size_t>(area.width() - 2), U'─');
        canvas_.text({0, 0}, U"┌" + line + U"┐", title);
        const std::u32string text = shorten(to_utf32(form_.caption()), area.width() - 10);
        if (!text.empty()) canvas_.text({2, 0}, U" " + text + U" ", title);
        picture_.close_box = {area.right - 5, 0, area.right - 2, 1};
        canvas_.text({picture_.close_box.left, 0}, U"[x]", title);
    }

    void draw_control(const PlacedControl& placed) {
        const Control& control = *placed.control;
        const auto back = control.back_color();
        switch (control.kind()) {
            case ControlKind::label:
            case ControlKind::panel:
                if (back) canvas_.fill(placed.cells, {.back = color_of(*back)});
                draw_lines(placed, placed.cells.left, style_of(control));
                break;
            case ControlKind::button:
                draw_button(placed);
                break;
            case ControlKind::option_button:
                draw_choice(placed, static_cast<const forms::OptionButton&>(control).value() ? U"(•)" : U"( )");
                break;
            case ControlKind::check_box:
                draw_choice(placed, static_cast<const forms::CheckBox&>(control).value() != 0 ? U"[x]" : U"[ ]");
                break;
            case ControlKind::text_box:
                draw_text_box(placed);
                break;
            case ControlKind::list_view:
                draw_list(placed);
                break;
            case ControlKind::shape: {
                // Full or not, so that nodes can be told apart on screens without colours.
                const Color color = color_of(static_cast<const forms::Shape&>(control).fill_color());
                const bool full = color == Color::bright_green || color == Color::white;
                canvas_.fill(placed.cells, {.fore = color}, full ? U'█' : U'▒');
                break;
            }
            case ControlKind::line:
                canvas_.line({placed.cells.left, placed.cells.top},
                             {placed.cells.right - 1, placed.cells.bottom - 1},
                             static_cast<const forms::Line&>(control).etched ? look::kFaint
                                                                             : color_of(control.fore_color()));
                break;
            case ControlKind::tab_pages:
            case ControlKind::host_control:
                break;
        }
    }

    static Style style_of(const Control& control) {
        return {.fore = control.enabled() ? color_of(control.fore_color()) : look::kFaint,
                .bold = control.font().bold || control.font().points >= 12};
    }

    void draw_lines(const PlacedControl& placed, int column, const Style& style) {
        int row = placed.cells.top;
        for (const std::u32string& line : placed.lines) canvas_.text({column, row++}, line, style);
    }

    /// Underlines the mnemonic, which stands in the first line where it is seen at all.
    void draw_mnemonic(const PlacedControl& placed, int column, Style style) {
        const Caption caption = parse_caption(placed.control->caption());
        if (!caption.mnemonic || placed.lines.empty() || *caption.mnemonic >= placed.lines.front().size()) return;
        style.underline = true;
        const std::u32string_view line = placed.lines.front();
        const int before = text_width(line.substr(0, *caption.mnemonic));
        canvas_.text({column + before, placed.cells.top}, line.substr(*caption.mnemonic, 1), style);
    }

    /// In brackets; the focus makes arrows of them, and a button that is disabled has none.
    void draw_button(const PlacedControl& placed) {
        const auto& button = static_cast<const forms::Button&>(*placed.control);
        const bool has_focus = focused(button);
        Style style = has_focus ? look::kFocus : style_of(button);
        style.bold = style.bold || button.is_default;
        const Area& cells = placed.cells;
        const int row = cells.top;
        canvas_.fill(cells, style);
        const std::u32string& caption = placed.lines.front();
        const int column = cells.left + 1 + (cells.width() - 2 - text_width(caption)) / 2;
        canvas_.text({column, row}, caption, style);
        if (button.enabled()) {
            draw_mnemonic(placed, column, style);
            canvas_.text({cells.left, row}, has_focus ? U"▸" : U"[", style);
            canvas_.text({cells.right - 1, row}, has_focus ? U"◂" : U"]", style);
        }
        if (has_focus) picture_.cursor = Point{column, row};
    }

    /// An option button or a check box: a mark in brackets, which the focus makes arrows of.
    void draw_choice(const PlacedControl& placed, std::u32string mark) {
        const Style style = style_of(*placed.control);
        Style mark_style = style;
        if (focused(*placed.control)) {
            mark_style = look::kFocus;
            mark = {U'▸', mark[1], U'◂'};
            picture_.cursor = Point{placed.cells.left + 1, placed.cells.top};
        }
        const int column = canvas_.text({placed.cells.left, placed.cells.top}, mark, mark_style) + 1;
        draw_lines(placed, column, style);
        draw_mnemonic(placed, column, style);
    }

    void draw_text_box(const PlacedControl& placed) {
        const Control& box = *placed.control;
        const Area& cells = placed.cells;
        Style style = box.enabled() ? look::kField : look::kFace;
        style.fore = style_of(box).fore;
        style.underline = true;
        canvas_.fill(cells, style);
        const std::u32string text = to_utf32(box.caption());
        const int width = cells.width() - 2;
        const Point start{cells.left + 1, cells.top};
        if (focused(box)) {
            const std::size_t at = look_.cursor(box, text);
            const std::size_t first = first_seen(text, at, width);
            const std::u32string_view seen = std::u32string_view(text).substr(first);
            canvas_.text(start, beginning(seen, width), style);
            picture_.cursor = Point{start.column + text_width(seen.substr(0, at - first)), start.row};
        } else {
            // The end of a path says more than its beginning.
            canvas_.text(start, shorten(text, width, Cut::start), style);
        }
        const Style edge = focused(box) ? look::kFocus : Style{};
        canvas_.text({cells.left, cells.top}, focused(box) ? U"▸" : U"[", edge);
        canvas_.text({cells.right - 1, cells.top}, focused(box) ? U"◂" : U"]", edge);
    }

    void draw_list(const PlacedControl& placed) {
        const auto& list = static_cast<const forms::ListView&>(*placed.control);
        const ListPane pane(list, placed.cells, look_.scale, look_.lists[&list]);
        pane.paint(canvas_, focused(list), icons_);
        if (!focused(list)) return;
        const int row = list.selected() ? pane.place_of(*list.selected()) : placed.cells.top;
        if (row >= placed.cells.top && row < placed.cells.bottom) picture_.cursor = Point{placed.cells.left, row};
    }

    const forms::Form& form_;
    FormLook& look_;
    const IconCharacters& icons_;
    FormPicture picture_;
    Canvas& canvas_ = picture_.canvas;
};

}  // namespace

Color color_of(forms::Color color) noexcept {
    constexpr std::pair<forms::Color, Color> kColors[] = {
        {forms::kWhite, Color::white},
        {forms::kRed, Color::red},
        {forms::kBlue, Color::blue},
        {forms::kGreen, Color::bright_green},
        {forms::kGrey, Color::light_grey},
        {forms::kDarkGrey, Color::dark_grey},
        // The light green of a finished display; on white it would not be read.
        {forms::rgb(100, 255, 100), Color::green},
    };
    for (const auto& [of_form, on_terminal] : kColors) {
        if (of_form == color) return on_terminal;
    }
    return Color::black;
}

std::size_t& FormLook::cursor(const Control& box, std::u32string_view text) {
    std::size_t& at = cursors.try_emplace(&box, text.size()).first->second;
    return at = std::min(at, text.size());
}

const PlacedControl* FormPicture::control_at(Point at) const noexcept {
    const auto found = std::find_if(controls.rbegin(), controls.rend(), [at](const PlacedControl& placed) {
        return placed.cells.contains(at) && placed.clip.contains(at) && placed.control->kind() != ControlKind::line;
    });
    return found == controls.rend() ? nullptr : &*found;
}

const PlacedControl* FormPicture::find(const Control& control) const noexcept {
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
