#include "simulator/win32/win32_screen.h"

#include <exception>
#include <limits>
#include <stdexcept>

#include "core/unicode.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

ActionResult possible(bool answer) noexcept { return answer ? ActionResult::done : ActionResult::not_possible; }

std::u16string decimal(std::size_t number) { return from_utf8(std::to_string(number)); }

[[noreturn]] void refuse(const std::u16string& control, const std::string& what) {
    throw std::invalid_argument(to_utf8(control) + " " + what);
}

/// "Rows", "RowN" and "RowN.ForeColor".
std::optional<std::u16string> list_property(WindowHandle list, std::u16string_view property) {
    constexpr std::u16string_view kRow = u"Row";
    constexpr std::u16string_view kForeColor = u".ForeColor";
    const std::size_t count = shown_row_count(list);
    if (property == u"Rows") return decimal(count);
    if (property.substr(0, kRow.size()) != kRow) return std::nullopt;
    std::u16string_view digits = property.substr(kRow.size());
    const bool color = digits.ends_with(kForeColor);
    if (color) digits.remove_suffix(kForeColor.size());
    const auto number = parse_number(digits, 1, std::numeric_limits<std::int32_t>::max());
    if (!number) return std::nullopt;
    const auto row = static_cast<std::size_t>(*number) - 1;
    if (row >= count) return u"(none)";
    return color ? shown_color(shown_row_color(list, row)) : shown_row(shown_row(list, row));
}

/// The properties that only some kinds of controls have.
std::optional<std::u16string> own_property(WindowHandle window, const std::u16string& control,
                                           std::u16string_view property) {
    switch (shown_kind(window, control)) {
        case ShownKind::option_button:
            if (property == u"Value") return shown_boolean(shown_checked(window));
            return std::nullopt;
        case ShownKind::check_box:
            if (property == u"Value") return shown_checked(window) ? u"1" : u"0";
            return std::nullopt;
        case ShownKind::drawing:
            if (property == u"FillColor") {
                const auto color = shown_fill_color(window, control);
                return color ? shown_color(*color) : u"(none)";
            }
            return std::nullopt;
        case ShownKind::pages:
            if (property == u"Tab") return from_utf8(std::to_string(shown_page(window)));
            return std::nullopt;
        case ShownKind::list: return list_property(window, property);
        default: return std::nullopt;
    }
}

}  // namespace

void Win32Screen::set_user(ScreenUser* user) noexcept {
    driver_.reset();
    user_ = user;
    if (user == nullptr) return;
    // Without a driver nobody would ever act: a module whose loops cannot be watched ends the program.
    driver_.emplace(module_, static_cast<WindowUser&>(*this));
}

WindowHandle Win32Screen::dialog() {
    const WindowHandle top = top_form_window();
    if (top == nullptr) throw std::invalid_argument("no dialog is open");
    return top;
}

WindowHandle Win32Screen::control(const std::u16string& name) {
    const WindowHandle found = control_window(dialog(), name);
    if (found == nullptr) refuse(u"the dialog", "has no control " + to_utf8(in_quotes(name)));
    return found;
}

WindowHandle Win32Screen::list(const std::u16string& name) {
    const WindowHandle found = control(name);
    if (shown_kind(found, name) != ShownKind::list) refuse(name, "is no list");
    return found;
}

bool Win32Screen::has_control(const std::u16string& name) const {
    const WindowHandle top = top_form_window();
    return top != nullptr && control_window(top, name) != nullptr;
}

ActionResult Win32Screen::click(const std::u16string& name) {
    const WindowHandle target = control(name);
    const bool takes = takes_input(target);
    if (takes) driver_->click(target);
    return possible(takes);
}

ActionResult Win32Screen::press(const std::u16string& name, forms::MouseButton button, float x, float y) {
    const WindowHandle target = control(name);
    const bool takes = takes_input(target);
    if (takes) driver_->press(target, button, x, y);
    return possible(takes);
}

ActionResult Win32Screen::set(const std::u16string& name, const std::u16string& value) {
    const WindowHandle target = control(name);
    const bool takes = takes_input(target);
    const ShownKind kind = shown_kind(target, name);
    if (kind == ShownKind::text_box) {
        if (takes) driver_->set_text(target, value);
        return possible(takes);
    }
    const bool on = value == u"on";
    if (!on && value != u"off") throw std::invalid_argument(to_utf8(in_quotes(value)) + " is neither on nor off");
    if (kind != ShownKind::option_button && kind != ShownKind::check_box) refuse(name, "takes no value");
    if (shown_checked(target) == on) return possible(takes);
    // An option goes off only by another one going on.
    return !on && kind == ShownKind::option_button ? ActionResult::not_possible : click(name);
}

ActionResult Win32Screen::choose_from_menu(const std::u16string& name, std::size_t row, const std::u16string& item) {
    const WindowHandle target = list(name);
    if (row < 1 || row > shown_row_count(target)) refuse(name, "has no row " + std::to_string(row));
    return possible(takes_input(target) && driver_->choose_from_menu(target, row - 1, item));
}

void Win32Screen::close() { driver_->close(dialog()); }

void Win32Screen::activate() { driver_->activate(dialog()); }

std::u16string Win32Screen::property(const std::u16string& name, const std::u16string& property) const {
    if (property == u"Caption" && shown_name(dialog()) == name) {
        return shown_text(dialog());
    }
    const WindowHandle target = control(name);
    if (property == u"Caption" || property == u"Text") return shown_text(target);
    if (property == u"Enabled") return shown_boolean(shown_enabled(target));
    if (property == u"Visible") return shown_boolean(shown_visible(target));
    auto value = own_property(target, name, property);
    if (!value) refuse(name, "has no property " + to_utf8(in_quotes(property)));
    return *std::move(value);
}

std::vector<std::vector<std::u16string>> Win32Screen::rows(const std::u16string& name) const {
    const WindowHandle shown = list(name);
    std::vector<std::vector<std::u16string>> all;
    for (std::size_t row = 0; row < shown_row_count(shown); ++row) {
        all.push_back(shown_row(shown, row));
    }
    return all;
}

// ---- What the windows' user is told -------------------------------------------------------------------

void Win32Screen::form_opened(const std::u16string& name) noexcept {
    if (user_ != nullptr) user_->dialog_opened(to_utf8(name));
}

void Win32Screen::form_closed(const std::u16string& name) noexcept {
    if (user_ != nullptr) user_->dialog_closed(to_utf8(name));
}

void Win32Screen::messages_handled() noexcept {
    if (user_ != nullptr) user_->messages_handled();
}

forms::MessageAnswer Win32Screen::answer(const forms::MessageBox& box) noexcept {
    if (user_ != nullptr) return user_->answer(box);
    return box.buttons == forms::MessageButtons::yes_no ? forms::MessageAnswer::yes : forms::MessageAnswer::ok;
}

std::optional<std::u16string> Win32Screen::choose_file(const forms::OpenFileRequest& request) noexcept {
    return user_ == nullptr ? std::nullopt : user_->choose_file(request);
}

void Win32Screen::beeped() noexcept {
    if (user_ != nullptr) user_->beeped();
}

}  // namespace vex::sim
