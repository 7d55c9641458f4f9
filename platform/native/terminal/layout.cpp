// Where the controls of a form stand on the character grid.
#include "platform/native/terminal/layout.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {
namespace {

using forms::Control;
using forms::ControlKind;
using forms::Twips;

int cells_of(Twips twips, Twips per_cell) noexcept {
    return static_cast<int>(std::lround(static_cast<double>(twips) / per_cell));
}

/// The cell that a point lies in.
int cell_at(Twips twips, Twips per_cell) noexcept {
    return static_cast<int>(std::floor(static_cast<double>(twips) / per_cell));
}

bool wraps_text(ControlKind kind) noexcept {
    return kind == ControlKind::label || kind == ControlKind::option_button || kind == ControlKind::check_box;
}

/// The left top corner of a control in twips of the client area.
forms::Rect absolute_place(const Control& control) noexcept {
    forms::Rect place = control.place();
    for (const Control* parent = control.parent(); parent != nullptr; parent = parent->parent()) {
        place.left += parent->place().left;
        place.top += parent->place().top;
    }
    return place;
}

/// Controls of one size get one size in cells, and those of one left edge one column. What is about one row
/// high takes the row in which its middle lies, so that a mark and the label beside it meet.
Area cells_for(const forms::Rect& place, ControlKind kind, const Scale& scale) noexcept {
    Area cells;
    if (kind == ControlKind::line) {
        cells.left = cell_at(place.left, scale.column);
        cells.right = cell_at(place.left + place.width, scale.column) + 1;
        cells.top = cell_at(place.top, scale.row);
        cells.bottom = cell_at(place.top + place.height, scale.row) + 1;
        return cells;
    }
    cells.left = cells_of(place.left, scale.column);
    cells.right = cells.left + std::max(1, cells_of(place.width, scale.column));
    const bool one_line = kind == ControlKind::button || kind == ControlKind::text_box;
    if (one_line || cells_of(place.height, scale.row) <= 1) {
        cells.top = cell_at(place.top + place.height / 2, scale.row);
        cells.bottom = cells.top + 1;
    } else {
        cells.top = cells_of(place.top, scale.row);
        cells.bottom = std::max(cells.top + 1, cells_of(place.top + place.height, scale.row));
    }
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

/// Makes room for the texts that do not fit.
class TextFitter {
public:
    explicit TextFitter(std::vector<PlacedControl>& controls) noexcept : controls_(controls) {}

    /// A caption does not wrap: its button grows to the right, then to the left.
    void fit_button(PlacedControl& placed) const {
        const int adornment = adornment_width(ControlKind::button);
        const std::u32string text = text_of(*placed.control);
        const int wanted = text_width(text) + adornment;
        Area& cells = placed.cells;
        if (cells.width() < wanted)
            cells.right = std::max(cells.right, std::min(cells.left + wanted, free_right(placed)));
        if (cells.width() < wanted)
            cells.left = std::min(cells.left, std::max(cells.right - wanted, free_left(placed)));
        placed.lines = {shorten(text, cells.width() - adornment)};
    }

    /// Others grow to the right, then downwards.
    void fit_text(PlacedControl& placed) const {
        const int adornment = adornment_width(placed.control->kind());
        const std::u32string text = text_of(*placed.control);
        const auto lines_for = [&](int width) { return wrap(text, std::max(1, width - adornment)); };
        const auto fits = [&] {
            return static_cast<int>(placed.lines.size()) <= placed.cells.height() &&
                   widest(placed.lines) + adornment <= placed.cells.width();
        };
        placed.lines = lines_for(placed.cells.width());
        if (text.empty() || fits()) return;

        const int wanted = placed.cells.left + adornment + widest(wrap(text, 10'000));
        const int right = std::max(placed.cells.right, std::min(wanted, free_right(placed)));
        placed.lines = lines_for(right - placed.cells.left);
        placed.cells.right = std::max(placed.cells.right, placed.cells.left + adornment + widest(placed.lines));
        if (fits()) return;

        const int bottom = placed.cells.top + static_cast<int>(placed.lines.size());
        placed.cells.bottom = std::max(placed.cells.bottom, std::min(bottom, free_bottom(placed)));
        const auto rows = static_cast<std::size_t>(placed.cells.height());
        if (placed.lines.size() <= rows) return;
        placed.lines.resize(rows);
        placed.lines.back() = shorten(placed.lines.back() + U"…", placed.cells.width() - adornment);
    }

private:
    static bool obstructs(const PlacedControl& other, const PlacedControl& placed) noexcept {
        const Control& control = *other.control;
        return &other != &placed && control.parent() == placed.control->parent() &&
               control.kind() != ControlKind::line &&
               !(control.kind() == ControlKind::label && control.caption().empty());
    }

    /// The first column to the right that is not free on the control's rows; one is left free before others.
    int free_right(const PlacedControl& placed) const noexcept {
        int limit = placed.clip.right;
        for (const PlacedControl& other : controls_) {
            const bool beside = other.cells.top < placed.cells.bottom && other.cells.bottom > placed.cells.top;
            if (obstructs(other, placed) && beside && other.cells.left >= placed.cells.right) {
                limit = std::min(limit, other.cells.left - 1);
            }
        }
        return limit;
    }

    int free_left(const PlacedControl& placed) const noexcept {
        int limit = placed.clip.left;
        for (const PlacedControl& other : controls_) {
            const bool beside = other.cells.top < placed.cells.bottom && other.cells.bottom > placed.cells.top;
            if (obstructs(other, placed) && beside && other.cells.right <= placed.cells.left) {
                limit = std::max(limit, other.cells.right + 1);
            }
        }
        return limit;
    }

    int free_bottom(const PlacedControl& placed) const noexcept {
        int limit = placed.clip.bottom;
        for (const PlacedControl& other : controls_) {
            const bool below = other.cells.left < placed.cells.right && other.cells.right > placed.cells.left;
            if (obstructs(other, placed) && below && other.cells.top >= placed.cells.bottom) {
                limit = std::min(limit, other.cells.top);
            }
        }
        return limit;
    }

    std::vector<PlacedControl>& controls_;
};

}  // namespace

Scale scale_for(Size terminal) noexcept {
    const Scale coarsest;
    // The smallest terminal leaves two columns and three rows for frames and the host's line.
    const auto shrink = [](Twips twips, int cells, int smallest, Twips least) {
        const int room = std::max(cells, 1);
        return std::clamp((twips * smallest + room - 1) / room, least, twips);
    };
    return {shrink(coarsest.column, terminal.columns - 2, kSmallestTerminal.columns - 2, 60),
            shrink(coarsest.row, terminal.rows - 3, kSmallestTerminal.rows - 3, 120)};
}

Size client_size(const forms::Form& form, const Scale& scale) noexcept {
    return {cells_of(form.width(), scale.column), cells_of(form.height(), scale.row)};
}

int adornment_width(ControlKind kind) noexcept {
    switch (kind) {
        case ControlKind::button:
            return 2;
        case ControlKind::option_button:
        case ControlKind::check_box:
            return 4;
        default:
            return 0;
    }
}

std::vector<PlacedControl> lay_out(const forms::Form& form, const Scale& scale) {
    const Size client = client_size(form, scale);
    std::vector<PlacedControl> placed_controls;
    placed_controls.reserve(form.controls().size());
    for (Control* control : form.controls()) {
        const ControlKind kind = control->kind();
        if (!control->reachable() || kind == ControlKind::host_control || kind == ControlKind::tab_pages) continue;
        PlacedControl placed;
        placed.control = control;
        placed.clip = {0, 0, client.columns, client.rows};
        for (const Control* parent = control->parent(); parent != nullptr; parent = parent->parent()) {
            placed.clip = placed.clip.meet(cells_for(absolute_place(*parent), parent->kind(), scale));
        }
        placed.cells = cells_for(absolute_place(*control), kind, scale);
        placed_controls.push_back(std::move(placed));
    }
    // Buttons first: their captions have no other way out.
    const TextFitter fitter(placed_controls);
    for (PlacedControl& placed : placed_controls) {
        if (placed.control->kind() == ControlKind::button) fitter.fit_button(placed);
    }
    for (PlacedControl& placed : placed_controls) {
        if (wraps_text(placed.control->kind())) fitter.fit_text(placed);
    }
    return placed_controls;
}

}  // namespace vex::platform::native::terminal
