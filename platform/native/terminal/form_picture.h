// A form drawn on the character grid: its picture and what can be hit in it.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "forms/form.h"
#include "platform/native/terminal/layout.h"
#include "platform/native/terminal/list_pane.h"

namespace vex::platform::native::terminal {

/// The nearest of the sixteen to a form's colour.
Color color_of(forms::Color color) noexcept;

/// What the user sees of a form beyond the form's own data.
struct FormLook {
    Scale scale;
    const forms::Control* focus = nullptr;
    /// Whether it takes the input.
    bool active = true;
    std::map<const forms::Control*, ListScroll> lists;
    /// The character that the cursor of a text box stands before; at the end where there is none.
    std::map<const forms::Control*, std::size_t> cursors;

    /// The cursor, brought into the range of `text`.
    std::size_t& cursor(const forms::Control& box, std::u32string_view text);
};

/// A picture of a form in its frame. Places are cells of the picture.
struct FormPicture {
    Canvas canvas{Size{}};
    /// In drawing order: the last one that holds a cell is what is seen there.
    std::vector<PlacedControl> controls;
    Area close_box;
    std::optional<Point> cursor;

    /// The control seen at a cell, or null.
    const PlacedControl* control_at(Point at) const noexcept;
    const PlacedControl* find(const forms::Control& control) const noexcept;
};

/// The size of a form with its frame.
Size frame_size(const forms::Form& form, const Scale& scale) noexcept;

/// Brings the scroll positions in `look` into range on the way.
FormPicture draw_form(const forms::Form& form, FormLook& look, const IconCharacters& icons);

}  // namespace vex::platform::native::terminal
