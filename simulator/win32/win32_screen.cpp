// The screen of real windows.
#include "simulator/win32/win32_screen.h"

#include <stdexcept>

namespace vex::sim {

namespace win32 = platform::win32;

void Win32Screen::set_user(ScreenUser* user) noexcept {
    driver_.reset();
    // Without a driver nobody would ever act: a module whose loops cannot be watched ends the program.
    if (user != nullptr) driver_.emplace(module_, *user);
}

win32::WindowHandle Win32Screen::dialog() {
    const WindowHandle top = win32::top_form_window();
    if (top == nullptr) throw std::invalid_argument("no dialog is open");
    return top;
}

std::optional<ShownControl> Win32Screen::find(const std::u16string& name) const {
    const WindowHandle found = any_dialog() ? window(name) : nullptr;
    if (found == nullptr) return std::nullopt;
    ShownControl shown;
    shown.caption = win32::shown_text(found);
    shown.enabled = win32::shown_enabled(found);
    shown.visible = win32::shown_visible(found);
    shown.takes_input = win32::takes_input(found);
    switch (win32::shown_kind(found, name)) {
        case win32::ShownKind::text_box: shown.kind = ShownControl::Kind::text_box; break;
        case win32::ShownKind::option_button:
            shown.kind = ShownControl::Kind::option_button;
            shown.checked = win32::shown_checked(found);
            break;
        case win32::ShownKind::check_box:
            shown.kind = ShownControl::Kind::check_box;
            shown.checked = win32::shown_checked(found);
            break;
        case win32::ShownKind::drawing:
            shown.kind = ShownControl::Kind::shape;
            shown.fill_color = win32::shown_fill_color(found, name);
            break;
        case win32::ShownKind::pages:
            shown.kind = ShownControl::Kind::pages;
            shown.page = win32::shown_page(found);
            break;
        case win32::ShownKind::list:
            shown.kind = ShownControl::Kind::list;
            for (std::size_t row = 0; row < win32::shown_row_count(found); ++row)
                shown.rows.push_back({win32::shown_row(found, row), win32::shown_row_color(found, row)});
            break;
        default: break;
    }
    return shown;
}

}  // namespace vex::sim
