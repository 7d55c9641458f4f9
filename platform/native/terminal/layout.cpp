// Where the controls of a form stand on the character grid.
#include "platform/native/terminal/layout.h"

#include <cmath>
#include <cstddef>

namespace vex::platform::native::terminal {
namespace {

using forms::Control;
using forms::ControlKind;
using forms::Twips;

/// The whole cells in a stretch, and the cell that a point lies in: rounded down, both together never reach
/// beyond the stretch's end.
int cells_of(Twips twips, Twips per_cell) noexcept {
    return static_cast<int>(std::floor(static_cast<double>(twips) / per_cell));
}

/// The size depends on the control's size alone. What is about one row high, and a shape, stands about the
/// row in which its middle lies, so that a mark meets the label beside it and the lines that lead to it.
Area cells_for(const Control& control, const Scale& scale) noexcept {
    forms::Rect place = control.place();
    for (const Control* parent = control.parent(); parent != nullptr; parent = parent->parent()) {
        place.left += parent->place().left;
        place.top += parent->place().top;
    }
    const ControlKind kind = control.kind();
    Area cells{cells_of(place.left + scale.column / 2, scale.column), cells_of(place.top, scale.row), 0, 0};
    if (kind == ControlKind::line) {
        cells.left = cells_of(place.left, scale.column);
        cells.right = cells_of(place.left + place.width, scale.column) + 1;
        cells.bottom = cells_of(place.top + place.height, scale.row) + 1;
        return cells;
    }
    int height = cells_of(place.height, scale.row);
    if (height <= 1 || kind == ControlKind::button || kind == ControlKind::text_box) height = 1;
    if (height == 1 || kind == ControlKind::shape) {
        cells.top = cells_of(place.top + place.height / 2, scale.row) - height / 2;
    }
    cells.right = cells.left + std::max(1, cells_of(place.width, scale.column));
    cells.bottom = cells.top + height;
    return cells;
}

std::u32string text_of(const Control& control) {
    return control.kind() == ControlKind::label ? to_utf32(control.caption()) : parse_caption(control.caption()).text;
}

int widest(const std::vector<std::u32string>& lines) noexcept {
    int width = 0;
    for (const std::u32string& line : lines) width = std::max(width, text_width(line));
    return width;
}

using Controls = std::vector<PlacedControl>;

/// How far a control can grow without meeting others of its container, with `gap` cells between beside them.
Area room_for(const PlacedControl& placed, const Controls& controls, int gap) noexcept {
    Area room = placed.clip;
    const Area& own = placed.cells;
    for (const PlacedControl& other : controls) {
        const Control& control = *other.control;
        const Area& cells = other.cells;
        if (&other == &placed || control.parent() != placed.control->parent() || control.kind() == ControlKind::line ||
            (control.kind() == ControlKind::label && control.caption().empty())) {
            continue;
        }
        if (cells.top < own.bottom && cells.bottom > own.top) {
            if (cells.left > own.left) room.right = std::min(room.right, cells.left - gap);
            if (cells.left < own.left) room.left = std::max(room.left, std::min(own.left, cells.right + gap));
        }
        if (cells.left < own.right && cells.right > own.left && cells.top >= own.bottom) {
            room.bottom = std::min(room.bottom, cells.top);
        }
    }
    return room;
}

/// A caption does not wrap: its button grows to the right, then to the left, and those of its size with it, as
/// far as none of them meets another control.
void fit_buttons_like(const Control& control, Controls& controls) {
    std::vector<PlacedControl*> alike;
    int width = 0;
    int limit = 10'000;
    for (PlacedControl& placed : controls) {
        const Control& other = *placed.control;
        if (other.kind() != ControlKind::button || other.place().width != control.place().width ||
            other.place().height != control.place().height) {
            continue;
        }
        alike.push_back(&placed);
        width = std::max({width, placed.cells.width(), text_width(text_of(other)) + 2});
        const Area room = room_for(placed, controls, 0);
        limit = std::min(limit, room.right - room.left);
        // Where two would touch in their old places, both are smaller.
        if (room.right < placed.cells.right) limit = std::min(limit, room.right - placed.cells.left);
    }
    width = std::min(width, limit);
    for (PlacedControl* placed : alike) {
        const int right = std::min(placed->cells.left + width, room_for(*placed, controls, 0).right);
        placed->cells = {right - width, placed->cells.top, right, placed->cells.bottom};
        placed->lines = {shorten(text_of(*placed->control), width - 2)};
    }
}

/// Labels, option buttons and check boxes grow to the right, then downwards.
void fit_text(PlacedControl& placed, const Controls& controls) {
    // The brackets and the mark before the text.
    const int adornment = placed.control->kind() == ControlKind::label ? 0 : 4;
    const std::u32string text = text_of(*placed.control);
    Area& cells = placed.cells;
    const auto wrap_at = [&](int width) { placed.lines = wrap(text, std::max(1, width - adornment)); };
    const auto fits = [&] {
        return static_cast<int>(placed.lines.size()) <= cells.height() &&
               widest(placed.lines) + adornment <= cells.width();
    };
    wrap_at(cells.width());
    if (text.empty() || fits()) return;

    const int wanted = cells.left + adornment + widest(wrap(text, 10'000));
    wrap_at(std::max(cells.right, std::min(wanted, room_for(placed, controls, 1).right)) - cells.left);
    cells.right = std::max(cells.right, cells.left + adornment + widest(placed.lines));
    if (fits()) return;

    const int bottom = cells.top + static_cast<int>(placed.lines.size());
    cells.bottom = std::max(cells.bottom, std::min(bottom, room_for(placed, controls, 1).bottom));
    const auto rows = static_cast<std::size_t>(cells.height());
    if (placed.lines.size() <= rows) return;
    placed.lines.resize(rows);
    placed.lines.back() = shorten(placed.lines.back() + U"…", cells.width() - adornment);
}

}  // namespace

Scale scale_for(Size terminal) noexcept {
    // The smallest terminal leaves two columns and three rows for frames and the host's line.
    const int columns = std::max(terminal.columns, kSmallestTerminal.columns) - 2;
    const int rows = std::max(terminal.rows, kSmallestTerminal.rows) - 3;
    const auto share = [](Twips twips, int cells) { return (twips + cells - 1) / cells; };
    return {std::max(60, share(Scale().column * (kSmallestTerminal.columns - 2), columns)),
            std::max(120, share(Scale().row * (kSmallestTerminal.rows - 3), rows))};
}

Size client_size(const forms::Form& form, const Scale& scale) noexcept {
    // What lies within half a cell of the next one has that, too.
    return {cells_of(form.width() + scale.column / 2, scale.column),
            cells_of(form.height() + scale.row / 2, scale.row)};
}

std::vector<PlacedControl> lay_out(const forms::Form& form, const Scale& scale) {
    const Size client = client_size(form, scale);
    std::vector<PlacedControl> controls;
    for (Control* control : form.controls()) {
        if (!control->reachable() || control->kind() == ControlKind::host_control ||
            control->kind() == ControlKind::tab_pages) {
            continue;
        }
        PlacedControl placed{control, cells_for(*control, scale), {0, 0, client.columns, client.rows}, {}};
        for (const Control* parent = control->parent(); parent != nullptr; parent = parent->parent()) {
            placed.clip = placed.clip.meet(cells_for(*parent, scale));
        }
        controls.push_back(std::move(placed));
    }
    // Buttons first: their captions have no other way out.
    for (const PlacedControl& placed : controls) {
        if (placed.control->kind() == ControlKind::button && placed.lines.empty()) {
            fit_buttons_like(*placed.control, controls);
        }
    }
    for (PlacedControl& placed : controls) {
        const ControlKind kind = placed.control->kind();
        if (kind == ControlKind::label || kind == ControlKind::option_button || kind == ControlKind::check_box) {
            fit_text(placed, controls);
        }
    }
    return controls;
}

}  // namespace vex::platform::native::terminal
