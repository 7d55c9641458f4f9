// Text pictures: a form or a screen as plain text, for readers, for tests and where there is no terminal.
#pragma once

#include <string>

#include "forms/form.h"
#include "platform/native/terminal/canvas.h"
#include "platform/native/terminal/form_picture.h"

namespace vex::platform::native::terminal {

/// The characters in UTF-8, a line for each row, without blanks at line ends.
std::string text_picture(const Canvas& canvas);

/// A letter for each cell that says how it looks, "." for the canvas's commonest style, and below it what
/// each letter means.
std::string style_picture(const Canvas& canvas);

/// The form in its frame at the smallest terminal's scale; what comes first in the keyboard order has the
/// focus.
FormPicture picture_of(forms::Form& form, const IconCharacters& icons = {});

}  // namespace vex::platform::native::terminal
