// What a user reads on the windows of a form, found by the controls' names.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "forms/controls.h"

namespace vex::sim {

/// A window handle, without the system's headers.
using WindowHandle = void*;

/// The topmost form of the calling thread, or null.
WindowHandle top_form_window();
/// The window of a control on a form; the window that it is drawn on for a shape; null when there is none.
WindowHandle control_window(WindowHandle form, std::u16string_view control);

/// The name of the control or form that a window belongs to, or empty.
std::u16string shown_name(WindowHandle window);
std::u16string shown_text(WindowHandle window);
/// The window's own state, whatever its parents' is.
bool shown_enabled(WindowHandle window);
bool shown_visible(WindowHandle window);
/// Whether a user could press there: the window and its parents are visible, it and the form are enabled.
bool takes_input(WindowHandle window);

/// What kind of control the window shows, as far as a user can tell: a page container is known by its pages.
enum class ShownKind { text, push_button, option_button, check_box, text_box, list, pages, drawing, other };
ShownKind shown_kind(WindowHandle window, std::u16string_view control);

bool shown_checked(WindowHandle button);
/// The page that shows, from 0.
int shown_page(WindowHandle pages);
/// The colour on the screen inside a shape; nothing while it cannot be seen.
std::optional<forms::Color> shown_fill_color(WindowHandle surface, std::u16string_view shape);

std::size_t shown_row_count(WindowHandle list);
std::vector<std::u16string> shown_row(WindowHandle list, std::size_t row);
/// The colour that the list writes a row's text in.
forms::Color shown_row_color(WindowHandle list, std::size_t row);

}  // namespace vex::sim
