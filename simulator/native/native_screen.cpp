// The screen where dialogs are data.
#include "simulator/native/native_screen.h"

#include <limits>
#include <stdexcept>
#include <utility>

#include "core/unicode.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

using forms::ControlKind;

ActionResult possible(bool answer) noexcept { return answer ? ActionResult::done : ActionResult::not_possible; }

bool takes_input(const forms::Control& control) { return control.enabled() && control.reachable(); }

[[noreturn]] void unknown_property(const forms::Control& control, const std::u16string& property) {
    throw std::invalid_argument(control.name() + " has no property " + to_utf8(in_quotes(property)));
}

std::vector<std::u16string> cells_of(const forms::ListRow& row) {
    std::vector<std::u16string> cells{row.text};
    for (const forms::ListCell& cell : row.sub_items) cells.push_back(cell.text);
    return cells;
}

/// "Rows", "RowN" and "RowN.ForeColor".
std::optional<std::u16string> list_property(const forms::ListView& list, std::u16string_view property) {
    constexpr std::u16string_view kRow = u"Row";
    constexpr std::u16string_view kForeColor = u".ForeColor";
    if (property == u"Rows") return from_utf8(std::to_string(list.row_count()));
    if (property.substr(0, kRow.size()) != kRow) return std::nullopt;
    std::u16string_view digits = property.substr(kRow.size());
    const bool color = digits.ends_with(kForeColor);
    if (color) digits.remove_suffix(kForeColor.size());
    const auto number = parse_number(digits, 1, std::numeric_limits<std::int32_t>::max());
    if (!number) return std::nullopt;
    const auto index = static_cast<std::size_t>(*number) - 1;
    if (index >= list.row_count()) return u"(none)";
    const forms::ListRow& row = list.rows()[index];
    return color ? shown_color(row.fore_color) : shown_row(cells_of(row));
}

/// The properties that only some kinds of controls have.
std::optional<std::u16string> own_property(const forms::Control& control, std::u16string_view property) {
    switch (control.kind()) {
        case ControlKind::option_button:
            if (property == u"Value") return shown_boolean(static_cast<const forms::OptionButton&>(control).value());
            return std::nullopt;
        case ControlKind::check_box:
            if (property == u"Value")
                return from_utf8(std::to_string(static_cast<const forms::CheckBox&>(control).value()));
            return std::nullopt;
        case ControlKind::shape:
            if (property == u"FillColor") return shown_color(static_cast<const forms::Shape&>(control).fill_color());
            return std::nullopt;
        case ControlKind::tab_pages:
            if (property == u"Tab")
                return from_utf8(std::to_string(static_cast<const forms::TabPages&>(control).tab()));
            return std::nullopt;
        case ControlKind::list_view:
            return list_property(static_cast<const forms::ListView&>(control), property);
        default:
            return std::nullopt;
    }
}

}  // namespace

forms::Form& NativeScreen::form() const {
    forms::Form* const top = toolkit_.top();
    if (top == nullptr) throw std::invalid_argument("no dialog is open");
    return *top;
}

forms::Control& NativeScreen::control(const std::u16string& name) const {
    forms::Control* const found = form().find(to_utf8(name));
    if (found == nullptr) throw std::invalid_argument(form().name() + " has no control " + to_utf8(in_quotes(name)));
    return *found;
}

forms::ListView& NativeScreen::list(const std::u16string& name) const {
    forms::Control& found = control(name);
    if (found.kind() != ControlKind::list_view) throw std::invalid_argument(found.name() + " is no list");
    return static_cast<forms::ListView&>(found);
}

bool NativeScreen::has_control(const std::u16string& name) const {
    return toolkit_.top() != nullptr && toolkit_.top()->find(to_utf8(name)) != nullptr;
}

ActionResult NativeScreen::click(const std::u16string& name) {
    forms::Control& target = control(name);
    const bool takes = takes_input(target);
    if (takes) form().raise_click(target);
    return possible(takes);
}

ActionResult NativeScreen::press(const std::u16string& name, forms::MouseButton button, float x, float y) {
    forms::Control& target = control(name);
    const bool takes = takes_input(target);
    if (takes) form().raise_mouse_down(target, button, x, y);
    return possible(takes);
}

ActionResult NativeScreen::set(const std::u16string& name, const std::u16string& value) {
    forms::Control& target = control(name);
    const bool takes = takes_input(target);
    if (target.kind() == ControlKind::text_box) {
        if (takes) form().user_text(static_cast<forms::TextBox&>(target), value);
        return possible(takes);
    }
    const bool on = value == u"on";
    if (!on && value != u"off") throw std::invalid_argument(to_utf8(in_quotes(value)) + " is neither on nor off");
    if (target.kind() == ControlKind::option_button) {
        // An option goes off only by another one going on.
        const bool is_on = static_cast<forms::OptionButton&>(target).value();
        if (is_on == on) return possible(takes);
        return on ? click(name) : ActionResult::not_possible;
    }
    if (target.kind() == ControlKind::check_box) {
        const bool is_on = static_cast<forms::CheckBox&>(target).value() != 0;
        return is_on == on ? possible(takes) : click(name);
    }
    throw std::invalid_argument(target.name() + " takes no value");
}

ActionResult NativeScreen::choose_from_menu(const std::u16string& name, std::size_t row, const std::u16string& item) {
    forms::ListView& target = list(name);
    if (row < 1 || row > target.row_count()) {
        throw std::invalid_argument(target.name() + " has no row " + std::to_string(row));
    }
    menu_item_ = item;
    const auto y = static_cast<float>(target.row_top(row - 1)) + forms::ScriptedToolkit::kRowHeight / 2.0F;
    form().raise_mouse_down(target, forms::MouseButton::right, 1.0F, y);
    // Still there: no menu came up to choose from.
    return possible(std::exchange(menu_item_, {}).empty());
}

void NativeScreen::close() { form().raise_close_request(); }

void NativeScreen::activate() { form().raise_activate(); }

std::u16string NativeScreen::property(const std::u16string& name, const std::u16string& property) const {
    if (from_utf8(form().name()) == name && property == u"Caption") return form().caption();
    const forms::Control& target = control(name);
    if (property == u"Caption" || property == u"Text") return target.caption();
    if (property == u"Enabled") return shown_boolean(target.enabled());
    if (property == u"Visible") return shown_boolean(target.visible());
    auto value = own_property(target, property);
    if (!value) unknown_property(target, property);
    return *std::move(value);
}

std::vector<std::vector<std::u16string>> NativeScreen::rows(const std::u16string& name) const {
    std::vector<std::vector<std::u16string>> all;
    for (const forms::ListRow& row : list(name).rows()) all.push_back(cells_of(row));
    return all;
}

// ---- What the toolkit asks of its user ----------------------------------------------------------------

void NativeScreen::form_opened(forms::Form& form) {
    if (user_ != nullptr) user_->dialog_opened(form.name());
}

void NativeScreen::form_closed(forms::Form& form) {
    if (user_ != nullptr) user_->dialog_closed(form.name());
}

bool NativeScreen::act(forms::Form& /*form*/) { return user_ != nullptr && user_->act(); }

void NativeScreen::pumped(forms::Form& /*form*/) {
    if (user_ != nullptr) user_->messages_handled();
}

forms::MessageAnswer NativeScreen::answer(const forms::MessageBox& box) {
    if (user_ != nullptr) return user_->answer(box);
    return box.buttons == forms::MessageButtons::yes_no ? forms::MessageAnswer::yes : forms::MessageAnswer::ok;
}

std::optional<std::u16string> NativeScreen::choose_file(const forms::OpenFileRequest& request) {
    return user_ == nullptr ? std::nullopt : user_->choose_file(request);
}

const forms::MenuItem* NativeScreen::choose(const forms::Menu& menu) {
    const std::u16string wanted = std::exchange(menu_item_, {});
    for (const forms::MenuItem& item : menu.items) {
        if (!wanted.empty() && item.caption == wanted) return &item;
    }
    return nullptr;
}

void NativeScreen::beep() {
    if (user_ != nullptr) user_->beeped();
}

}  // namespace vex::sim
