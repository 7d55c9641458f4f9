// The host's selection dialog.
#include "simulator/display_picker.h"

#include <algorithm>

#include "core/unicode.h"
#include "support/text.h"

namespace vex::sim {
namespace {

constexpr char16_t kChecked[] = u"checked";
constexpr char16_t kUnchecked[] = u"unchecked";

/// Where a display is reached, besides its port.
const std::u16string& address_of(const Display& display) {
    return display.connection == kModem ? display.phone : display.address;
}

bool matches(const Display& display, const std::u16string& wanted) {
    const std::u16string* const texts[] = {&display.name, &display.type, &display.port, &address_of(display)};
    return std::any_of(std::begin(texts), std::end(texts), [&wanted](const std::u16string* text) {
        return to_upper(*text).find(wanted) != std::u16string::npos;
    });
}

}  // namespace

DisplayPicker::DisplayPicker(forms::Toolkit& shown_on, const Displays& displays, const std::u16string& chosen)
    : Form(shown_on, {.name = "DisplayPicker", .caption = u"Brivola - Choose Displays", .width = 7200, .height = 3705}),
      displays_(displays),
      images_{{kChecked, "MARKED"}, {kUnchecked, "UNMARKED"}} {
    for (const std::u16string& name : split(chosen, u',')) {
        if (const auto display = displays_.find(name)) checked_.insert(*display);
    }
    list_.columns = {{u"Display", 2500}, {u"Type", 1900}, {u"Port", 800}, {u"Address", 1400}};
    list_.small_icons = &images_;
    lay_out({
        {.control = search_label_, .name = "search_label", .at = {200, 195, 800, 195}, .text = u"Search:"},
        {.control = search_box_,
         .name = "search_box",
         .at = {1100, 135, 3000, 315},
         .tab_index = 0,
         .accessible_name = u"Search"},
        {.control = list_,
         .name = "list",
         .at = {200, 585, 6800, 2340},
         .tab_index = 1,
         .accessible_name = u"Displays"},
        {.control = none_label_,
         .name = "none_label",
         .at = {400, 975, 6400, 195},
         .text = u"No display has this in its name, type, port or address."},
        {.control = count_label_, .name = "count_label", .at = {200, 3120, 2400, 195}},
        {.control = all_button_,
         .name = "all_button",
         .at = {2600, 3060, 2000, 330},
         .text = u"Check &All",
         .tab_index = 2},
        {.control = ok_button_, .name = "ok_button", .at = {4700, 3060, 1000, 330}, .text = u"OK", .tab_index = 3},
        {.control = cancel_button_,
         .name = "cancel_button",
         .at = {6000, 3060, 1000, 330},
         .text = u"Cancel",
         .tab_index = 4},
    });
    cancel_button_.is_cancel = true;
    search_box_.on_change = [this] { show_matches(); };
    list_.on_click = [this] {
        if (list_.selected()) toggle(*list_.selected());
    };
    all_button_.on_click = [this] { check_all(); };
    ok_button_.on_click = [this] {
        accepted_ = true;
        hide();
    };
    cancel_button_.on_click = [this] { hide(); };
}

std::u16string DisplayPicker::answer() const {
    std::u16string names;
    if (!accepted_) return names;
    for (const std::size_t display : checked_) {
        if (!names.empty()) names += u',';
        names += displays_.at(display).name;
    }
    return names;
}

void DisplayPicker::Form_Load() { show_matches(); }

void DisplayPicker::show_matches() {
    const std::u16string wanted = to_upper(search_box_.text());
    rows_.clear();
    list_.clear();
    for (std::size_t i = 0; i < displays_.size(); ++i) {
        const Display& display = displays_.at(i);
        if (!matches(display, wanted)) continue;
        rows_.push_back(i);
        const std::size_t row = list_.add_row({}, display.name, checked_.contains(i) ? kChecked : kUnchecked);
        list_.set_sub_item(row, 0, display.type);
        list_.set_sub_item(row, 1, display.port);
        list_.set_sub_item(row, 2, address_of(display));
    }
    if (!rows_.empty()) list_.select(0);
    none_label_.set_visible(rows_.empty());
    show_checks();
}

void DisplayPicker::show_checks() {
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        const auto key = checked_.contains(rows_[row]) ? kChecked : kUnchecked;
        if (list_.rows()[row].icon != images_.find(key)) list_.set_icon(row, key);
    }
    const auto number = [](std::size_t count) { return decimal_text(static_cast<std::int32_t>(count)); };
    count_label_.set_caption(number(checked_.size()) + u" of " + number(displays_.size()) + u" checked");
    all_button_.set_caption((all_checked() ? u"Uncheck &All " : u"Check &All ") + number(rows_.size()));
    all_button_.set_enabled(!rows_.empty());
    ok_button_.set_enabled(!checked_.empty());
    // Enter checks what the search has found, and then takes what is checked.
    all_button_.is_default = !search_box_.text().empty() && rows_.size() == 1 && !all_checked();
    ok_button_.is_default = !all_button_.is_default && !rows_.empty();
}

void DisplayPicker::toggle(std::size_t row) {
    if (!checked_.insert(rows_.at(row)).second) checked_.erase(rows_.at(row));
    show_checks();
}

bool DisplayPicker::all_checked() const {
    return !rows_.empty() &&
           std::all_of(rows_.begin(), rows_.end(), [this](std::size_t display) { return checked_.contains(display); });
}

void DisplayPicker::check_all() {
    const bool uncheck = all_checked();
    for (const std::size_t display : rows_) {
        if (uncheck) {
            checked_.erase(display);
        } else {
            checked_.insert(display);
        }
    }
    if (rows_.size() > 1 || uncheck) return show_checks();
    // Found and checked: the next one may be looked for.
    const std::size_t display = rows_.front();
    search_box_.set_text({});
    show_matches();
    list_.select(display);
}

}  // namespace vex::sim
