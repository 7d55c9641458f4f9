// What somebody meets who tries the plug-in at a simulated host.
#include "simulator/trial.h"

#include <thread>
#include <utility>

#include "core/digits.h"
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
    return std::ranges::any_of(
        texts, [&wanted](const std::u16string* text) { return to_upper(*text).find(wanted) != std::u16string::npos; });
}

}  // namespace

// ---- The selection dialog -----------------------------------------------------------------------------

DisplayPicker::DisplayPicker(forms::Toolkit& shown_on, const Displays& displays, const std::u16string& chosen)
    : Form(shown_on, {.name = "DisplayPicker", .caption = u"Brivola - Choose Displays", .width = 7200, .height = 3705}),
      displays_(displays),
      images_{{kChecked, "MARKED"}, {kUnchecked, "UNMARKED"}} {
    for (const std::u16string& name : split(chosen, u',')) {
        if (const auto display = displays_.find(name)) checked_.insert(*display);
    }
    list_.columns = {{u"Display", 2500}, {u"Type", 1900}, {u"Port", 800}, {u"Address", 1400}};
    list_.small_icons = &images_;
    const std::u16string none = u"No display has this in its name, type, port or address.";
    lay_out({
        {.control = search_label_, .name = "search_label", .at = {200, 195, 800, 195}, .text = u"Search:"},
        {.control = search_,
         .name = "search",
         .at = {1100, 135, 3000, 315},
         .tab_index = 0,
         .accessible_name = u"Search"},
        {.control = list_,
         .name = "list",
         .at = {200, 585, 6800, 2340},
         .tab_index = 1,
         .accessible_name = u"Displays"},
        {.control = none_, .name = "none", .at = {400, 975, 6400, 195}, .text = none},
        {.control = count_, .name = "count", .at = {200, 3120, 2400, 195}},
        {.control = all_, .name = "all", .at = {2600, 3060, 2000, 330}, .text = u"Check &All", .tab_index = 2},
        {.control = ok_, .name = "ok", .at = {4700, 3060, 1000, 330}, .text = u"OK", .tab_index = 3},
        {.control = cancel_, .name = "cancel", .at = {6000, 3060, 1000, 330}, .text = u"Cancel", .tab_index = 4},
    });
    cancel_.is_cancel = true;
    search_.on_change = [this] { show_matches(); };
    list_.on_click = [this] {
        if (!list_.selected()) return;
        const std::size_t display = rows_.at(*list_.selected());
        if (!checked_.insert(display).second) checked_.erase(display);
        show_checks();
    };
    all_.on_click = [this] { check_all(); };
    ok_.on_click = [this] {
        accepted_ = true;
        hide();
    };
    cancel_.on_click = [this] { hide(); };
    show_matches();
}

std::u16string DisplayPicker::answer() const {
    std::u16string names;
    if (!accepted_) return names;
    for (const std::size_t display : checked_) names += (names.empty() ? u"" : u",") + displays_.at(display).name;
    return names;
}

void DisplayPicker::show_matches() {
    const std::u16string wanted = to_upper(search_.text());
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
    none_.set_visible(rows_.empty());
    show_checks();
}

void DisplayPicker::show_checks() {
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        const auto key = checked_.contains(rows_[row]) ? kChecked : kUnchecked;
        if (list_.rows()[row].icon != images_.find(key)) list_.set_icon(row, key);
    }
    count_.set_caption(digits_of(checked_.size(), 10) + u" of " + digits_of(displays_.size(), 10) + u" checked");
    all_.set_caption(u"Check &All " + digits_of(rows_.size(), 10));
    all_.set_enabled(std::ranges::any_of(rows_, [this](std::size_t display) { return !checked_.contains(display); }));
    ok_.set_enabled(!checked_.empty());
    // Enter checks what the search has found, and then takes what is checked.
    all_.is_default = all_.enabled() && !search_.text().empty() && rows_.size() == 1;
    ok_.is_default = !all_.is_default && !rows_.empty();
}

void DisplayPicker::check_all() {
    checked_.insert(rows_.begin(), rows_.end());
    if (rows_.size() > 1) return show_checks();
    // Found and checked: the next one may be looked for.
    const std::size_t display = rows_.front();
    search_.set_text({});
    show_matches();
    list_.select(display);
}

// ---- How far a run is ---------------------------------------------------------------------------------

void RunProgress::begin_run(std::vector<std::u16string> names) {
    chosen_ = std::move(names);
    display_number = 0;
    cancelled_ = false;
}

void RunProgress::follow(const LinkEvent& event) {
    const Operation operation = event.call.operation;
    if (event.kind == LinkEvent::Kind::transfers) unit_share = event.percent / 100.0;
    if (event.kind != LinkEvent::Kind::begins) return;
    if (operation == u"OpenConnection") begin_display(event.call.display);
    if (operation == u"CancelTransmission") cancelled_ = true;
    // A loader goes to the first unit alone.
    if (operation == u"DownloadFirmwareWithLoader") units = 1;
    // What the run is about for its unit.
    if (operation == u"ResetAndClear" || operation.starts_with(u"DownloadFirmware")) {
        unit_number = std::min(unit_number + 1, units);
        unit_share = 0;
    }
}

void RunProgress::begin_display(const std::u16string& name) {
    auto found = std::ranges::find(chosen_, name);
    const bool again = found < chosen_.begin() + static_cast<std::ptrdiff_t>(display_number);
    if (found != chosen_.end() && (again || cancelled_)) {
        // Done again, or left over from a run that ended before it, it is a run of its own.
        begin_run({name});
        found = chosen_.begin();
    }
    // A display that nobody picked comes by itself, or nobody answers for it.
    display_number = found != chosen_.end() ? static_cast<std::size_t>(found - chosen_.begin()) + 1
                                            : std::min(display_number + 1, displays());
    unit_number = 0;
    unit_share = 0;
    const auto known = host_.displays.find(name);
    units = known ? std::max<std::size_t>(1, host_.units.ids(host_.displays.at(*known)).size()) : 1;
}

double RunProgress::run_share() const noexcept {
    if (display_number == 0) return 0;
    const double units_done = unit_number == 0 ? 0 : static_cast<double>(unit_number - 1) + unit_share;
    const double displays_done = static_cast<double>(display_number - 1) + units_done / static_cast<double>(units);
    return std::min(1.0, displays_done / static_cast<double>(displays()));
}

// ---- The host in front of its user --------------------------------------------------------------------

Trial::Trial(Host& host, forms::Toolkit& toolkit, RunProgress& progress, double speed, std::function<bool()> ended)
    : host_(host), toolkit_(toolkit), speed_(speed), ended_(std::move(ended)) {
    host_.choose_displays = [&] {
        DisplayPicker picker(toolkit_, host_.displays, choice_);
        picker.show_modal();
        std::u16string answer = picker.answer();
        if (answer.empty()) return answer;
        progress.begin_run(split(answer, u','));
        return choice_ = answer;
    };
    host_.on_link = [&](const LinkEvent& event) {
        progress.follow(event);
        wait(time_of(event));
        // Who leaves in the midst of it cuts the link.
        return !ended_();
    };
}

Trial::~Trial() {
    host_.on_link = nullptr;
    host_.choose_displays = nullptr;
}

Trial::Seconds Trial::time_of(const LinkEvent& event) {
    // So that a sample program takes about four seconds.
    constexpr double kBytesPerSecond = 20'000;
    const Operation operation = event.call.operation;
    if (event.kind == LinkEvent::Kind::begins) {
        transferring_ = false;
        if (operation == u"CancelTransmission") cancelled_ = true;
        if (operation == u"OpenConnection") cancelled_ = false;
        return Seconds(operation == u"OpenConnection"    ? 0.6
                       : operation == u"GetSignInfo"     ? 0.3
                       : operation == u"CloseConnection" ? 0.4
                                                         : 0);
    }
    if (event.kind == LinkEvent::Kind::transfers) {
        transferring_ = true;
        return Seconds(static_cast<double>(event.bytes) / kBytesPerSecond);
    }
    if (std::exchange(transferring_, false)) return Seconds::zero();
    return Seconds(operation == u"ResetAndClear" ? 0.9 : 0.5);
}

void Trial::wait(Seconds usual) {
    // How soon a key is answered, and how often the screen may change.
    constexpr Seconds kSlice{0.015};
    // What happens while it waits, the user's answers among it, happens at once.
    if (usual == Seconds::zero() || std::exchange(waiting_, true)) return;
    const auto end = std::chrono::steady_clock::now() + usual / speed_;
    while (!cancelled_ && !ended_()) {
        toolkit_.pump_messages();
        const Seconds left = end - std::chrono::steady_clock::now();
        if (left <= Seconds::zero()) break;
        std::this_thread::sleep_for(std::min(left, kSlice));
    }
    waiting_ = false;
}

}  // namespace vex::sim
