// A form drawn on the character grid: its picture and what can be hit in it.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "forms/form.h"
#include "platform/native/terminal/canvas.h"
#include "platform/native/terminal/layout.h"
#include "platform/native/terminal/list_pane.h"
#include "platform/native/terminal/text_pane.h"

namespace vex::platform::native::terminal {

/// What the user sees of a form beyond the form's own data.
struct FormLook {
    Scale scale;
    const forms::Control* focus = nullptr;
    /// Whether it takes the input.
    bool active = true;
    std::map<const forms::Control*, ListScroll> lists;
    std::map<const forms::Control*, TextCursor> texts;
};

/// A picture of a form in its frame. Places are cells of the picture.
struct FormPicture {
    Canvas canvas;
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
