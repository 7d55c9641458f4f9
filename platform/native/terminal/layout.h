// Where the controls of a form stand on the character grid.
#pragma once

#include "forms/form.h"
#include "platform/native/terminal/canvas.h"

namespace vex::platform::native::terminal {

/// Twips of one cell.
struct Scale {
    forms::Twips column = 100;
    forms::Twips row = 195;
};

/// The smallest terminal that the dialogs are drawn on.
inline constexpr Size kSmallestTerminal{80, 24};

/// The scale for a terminal: coarse enough for the smallest one, and finer where there is room. It is the
/// same for all forms, so that they keep their proportions to each other.
Scale scale_for(Size terminal) noexcept;

/// A control on the grid, in cells of the form's client area.
struct PlacedControl {
    forms::Control* control = nullptr;
    /// Its place. Where a text needs more room than its control has, and there is some, the place is larger.
    Area cells;
    /// The part of the client area that its containers leave to it.
    Area clip;
    /// The lines of its text, for labels, buttons, option buttons and check boxes; mnemonics taken out.
    std::vector<std::u32string> lines;
};

/// The cells of a form's client area.
Size client_size(const forms::Form& form, const Scale& scale) noexcept;

/// The reachable controls of `form` in drawing order; no tab containers and host controls. Shapes, fields, lists
/// and buttons of one size have one size in cells.
std::vector<PlacedControl> lay_out(const forms::Form& form, const Scale& scale);

}  // namespace vex::platform::native::terminal
