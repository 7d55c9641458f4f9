// The screen of the machine that the simulated host runs on.
#include "simulator/screen.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "core/digits.h"
#include "core/unicode.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

using Kind = forms::ControlKind;

/// "0x00BBGGRR".
std::u16string shown_color(forms::Color color) { return u"0x" + digits_of(color, 16, 8); }

/// "Rows", "RowN" and "RowN.ForeColor".
std::optional<std::u16string> list_property(const std::vector<ShownRow>& rows, std::u16string_view property) {
    constexpr std::u16string_view kRow = u"Row";
    constexpr std::u16string_view kForeColor = u".ForeColor";
    if (property == u"Rows") return digits_of(rows.size(), 10);
    if (!property.starts_with(kRow)) return std::nullopt;
    std::u16string_view digits = property.substr(kRow.size());
    const bool color = digits.ends_with(kForeColor);
    if (color) digits.remove_suffix(kForeColor.size());
    const auto number = parse_number(digits, 1, std::numeric_limits<std::int32_t>::max());
    if (!number) return std::nullopt;
    const auto index = static_cast<std::size_t>(*number) - 1;
    if (index >= rows.size()) return u"(none)";
    return color ? shown_color(rows[index].color) : shown_row(rows[index].cells);
}

std::optional<std::u16string> property_of(const ShownControl& control, const std::u16string& property) {
    if (property == u"Caption" || property == u"Text") return control.caption;
    if (property == u"Enabled") return shown_boolean(control.enabled);
    if (property == u"Visible") return shown_boolean(control.visible);
    if (control.kind == Kind::option_button && property == u"Value") return shown_boolean(control.checked);
    if (control.kind == Kind::check_box && property == u"Value") return control.checked ? u"1" : u"0";
    if (control.kind == Kind::shape && property == u"FillColor")
        return control.fill_color ? shown_color(*control.fill_color) : u"(none)";
    if (control.kind == Kind::tab_pages && property == u"Tab") return decimal_text(control.page);
    if (control.kind == Kind::list_view) return list_property(control.rows, property);
    return std::nullopt;
}

[[noreturn]] void complain(const std::u16string& control, const std::string& what) {
    throw std::invalid_argument(to_utf8(control) + " " + what);
}

/// How many letters two names share at their beginnings and at their ends.
std::ptrdiff_t likeness(const std::u16string& one, const std::u16string& other) {
    return std::ranges::mismatch(one, other).in1 - one.begin() +
           (std::mismatch(one.rbegin(), one.rend(), other.rbegin(), other.rend()).first - one.rbegin());
}

ActionResult possible(bool answer) noexcept { return answer ? ActionResult::done : ActionResult::not_possible; }

}  // namespace

ShownControl Screen::control(const std::u16string& name) const {
    if (!any_dialog()) throw std::invalid_argument("no dialog is open");
    auto found = find(name);
    if (found) return *std::move(found);
    const auto names = control_names();
    const auto nearest = std::ranges::max_element(names, {}, [&](const auto& other) { return likeness(name, other); });
    complain(dialog_name(), "has no control " + to_utf8(in_quotes(name)) +
                                (nearest == names.end() ? "" : "; the nearest is " + to_utf8(*nearest)));
}

ActionResult Screen::click(const std::u16string& name) {
    const bool takes = control(name).takes_input;
    if (takes) do_click(name);
    return possible(takes);
}

ActionResult Screen::press(const std::u16string& name, forms::MouseButton button, float x, float y) {
    const bool takes = control(name).takes_input;
    if (takes) do_press(name, button, x, y);
    return possible(takes);
}

ActionResult Screen::set(const std::u16string& name, const std::u16string& value) {
    const ShownControl target = control(name);
    if (target.kind == Kind::text_box) {
        if (target.takes_input) do_type(name, value);
        return possible(target.takes_input);
    }
    const bool on = value == u"on";
    if (!on && value != u"off") refuse(value, "is neither on nor off");
    if (target.kind != Kind::option_button && target.kind != Kind::check_box) complain(name, "takes no value");
    if (target.checked == on) return possible(target.takes_input);
    // An option goes off only by another one going on.
    return !on && target.kind == Kind::option_button ? ActionResult::not_possible : click(name);
}

ActionResult Screen::choose_from_menu(const std::u16string& name, std::size_t row, const std::u16string& item) {
    const std::size_t count = rows(name).size();
    if (row < 1 || row > count) complain(name, "has no row " + std::to_string(row));
    return possible(control(name).takes_input && do_choose(name, row - 1, item));
}

std::u16string Screen::property(const std::u16string& name, const std::u16string& property) const {
    if (any_dialog() && property == u"Caption" && dialog_name() == name) return dialog_caption();
    auto value = property_of(control(name), property);
    if (!value) complain(name, "has no property " + to_utf8(in_quotes(property)));
    return *std::move(value);
}

std::vector<std::vector<std::u16string>> Screen::rows(const std::u16string& name) const {
    const ShownControl shown = control(name);
    if (shown.kind != Kind::list_view) complain(name, "is no list");
    std::vector<std::vector<std::u16string>> all;
    for (const ShownRow& row : shown.rows) all.push_back(row.cells);
    return all;
}

std::u16string shown_row(const std::vector<std::u16string>& cells) {
    std::u16string line;
    for (const std::u16string& cell : cells) line += (line.empty() ? u"" : u" | ") + in_quotes(cell);
    return line;
}

}  // namespace vex::sim
