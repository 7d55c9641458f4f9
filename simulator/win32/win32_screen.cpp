// The screen of real windows.
#include "simulator/win32/win32_screen.h"

#include <stdexcept>

namespace vex::sim {

void Win32Screen::set_user(ScreenUser* user) noexcept {
    driver_.reset();
    // Without a driver nobody would ever act: a module whose loops cannot be watched ends the program.
    if (user != nullptr) driver_.emplace(module_, *user);
}

WindowHandle Win32Screen::dialog() {
    const WindowHandle top = top_form_window();
    if (top == nullptr) throw std::invalid_argument("no dialog is open");
    return top;
}

std::optional<ShownControl> Win32Screen::find(const std::u16string& name) const {
    const WindowHandle found = any_dialog() ? window(name) : nullptr;
    if (found == nullptr) return std::nullopt;
    ShownControl shown;
    shown.caption = shown_text(found);
    shown.enabled = shown_enabled(found);
    shown.visible = shown_visible(found);
    shown.takes_input = takes_input(found);
    switch (shown_kind(found, name)) {
        case ShownKind::text_box: shown.kind = ShownControl::Kind::text_box; break;
        case ShownKind::option_button:
            shown.kind = ShownControl::Kind::option_button;
            shown.checked = shown_checked(found);
            break;
        case ShownKind::check_box:
            shown.kind = ShownControl::Kind::check_box;
            shown.checked = shown_checked(found);
            break;
        case ShownKind::drawing:
            shown.kind = ShownControl::Kind::shape;
            shown.fill_color = shown_fill_color(found, name);
            break;
        case ShownKind::pages:
            shown.kind = ShownControl::Kind::pages;
            shown.page = shown_page(found);
            break;
        case ShownKind::list:
            shown.kind = ShownControl::Kind::list;
            for (std::size_t row = 0; row < shown_row_count(found); ++row)
                shown.rows.push_back({shown_row(found, row), shown_row_color(found, row)});
            break;
        default: break;
    }
    return shown;
}

}  // namespace vex::sim
