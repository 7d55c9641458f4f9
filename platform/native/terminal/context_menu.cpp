// Context menus of the terminal toolkit.
#include <algorithm>

#include "platform/native/terminal/colors.h"
#include "platform/native/terminal/terminal_toolkit.h"
#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {

void TerminalToolkit::pop_up_menu(forms::Form& form, forms::Menu& menu) {
    if (windows_.empty() || menu.items.empty() || ended_) return;
    const ShownForm& shown = windows_.back();
    const Point pointer = shown.window.pointer();
    const forms::MenuItem* chosen = nullptr;
    menu_.emplace(OpenMenu{menu, {shown.at.column + pointer.column, shown.at.row + pointer.row + 1}});
    stale_ = true;
    while (!ended_) {
        draw_when_stale();
        const auto input = read(true);
        if (input && handle_menu(*input, chosen)) break;
    }
    menu_.reset();
    stale_ = true;
    if (chosen != nullptr && !ended_) form.raise_menu_click(*chosen);
}

Area TerminalToolkit::menu_area(Size screen) const {
    int width = 0;
    for (const forms::MenuItem& item : menu_->menu.items) {
        width = std::max(width, text_width(parse_caption(item.caption).text));
    }
    Area area{menu_->at.column, menu_->at.row, menu_->at.column + width + 4,
              menu_->at.row + static_cast<int>(menu_->menu.items.size()) + 2};
    const int too_right = std::max(0, area.right - screen.columns);
    const int too_low = std::max(0, area.bottom - screen.rows);
    return {area.left - too_right, area.top - too_low, area.right - too_right, area.bottom - too_low};
}

void TerminalToolkit::draw_menu(Canvas& canvas) const {
    const Area area = menu_area(canvas.size());
    canvas.fill(area, {look::kText, look::kFace});
    canvas.frame(area, look::kTitle);
    for (std::size_t i = 0; i < menu_->menu.items.size(); ++i) {
        const int row = area.top + 1 + static_cast<int>(i);
        Ink ink{.fore = look::kText, .back = look::kFace};
        const bool chosen = i == menu_->chosen;
        if (chosen) ink = {.fore = look::kFocusText, .back = look::kFocus, .bold = true, .standout = true};
        canvas.fill({area.left + 1, row, area.right - 1, row + 1},
                    {ink.fore, *ink.back, ink.bold, false, ink.standout});
        if (chosen) canvas.text({area.left + 1, row}, U"▸", ink);
        canvas.text({area.left + 2, row}, parse_caption(menu_->menu.items[i].caption).text, ink);
    }
}

bool TerminalToolkit::handle_menu(const Input& input, const forms::MenuItem*& chosen) {
    stale_ = true;
    if (const auto* key = std::get_if<KeyPress>(&input)) return handle_menu_key(*key, chosen);
    if (const auto* mouse = std::get_if<MouseEvent>(&input)) return handle_menu_mouse(*mouse, chosen);
    return false;
}

bool TerminalToolkit::handle_menu_key(const KeyPress& key, const forms::MenuItem*& chosen) {
    const std::vector<forms::MenuItem>& items = menu_->menu.items;
    switch (key.key) {
        case Key::up:
            menu_->chosen = (menu_->chosen + items.size() - 1) % items.size();
            return false;
        case Key::down:
            menu_->chosen = (menu_->chosen + 1) % items.size();
            return false;
        case Key::enter:
            chosen = &items[menu_->chosen];
            return true;
        case Key::character: {
            const auto found = std::find_if(items.begin(), items.end(), [&key](const forms::MenuItem& item) {
                const Caption caption = parse_caption(item.caption);
                return !caption.text.empty() && same_letter(caption.text[caption.mnemonic.value_or(0)], key.character);
            });
            if (found == items.end()) {
                beep();
                return false;
            }
            chosen = &*found;
            return true;
        }
        default:
            return true;
    }
}

bool TerminalToolkit::handle_menu_mouse(const MouseEvent& event, const forms::MenuItem*& chosen) {
    // The release of the click that opened the menu.
    if (event.action == MouseAction::release) return false;
    if (event.action != MouseAction::press) return true;
    const Area area = menu_area(screen_.size());
    if (!area.contains(event.at)) return true;
    const int item = event.at.row - area.top - 1;
    if (item < 0 || item >= static_cast<int>(menu_->menu.items.size())) return false;
    chosen = &menu_->menu.items[static_cast<std::size_t>(item)];
    return true;
}

}  // namespace vex::platform::native::terminal
