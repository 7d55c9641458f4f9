// A form on the terminal while it is shown: its picture and its focus.
#include "platform/native/terminal/form_window.h"

#include <algorithm>
#include <cstdlib>

namespace vex::platform::native::terminal {
namespace {

using forms::Control;
using forms::ControlKind;

bool takes_focus(const Control& control) noexcept {
    switch (control.kind()) {
        case ControlKind::button:
        case ControlKind::option_button:
        case ControlKind::check_box:
        case ControlKind::text_box:
        case ControlKind::list_view:
            return control.tab_index() >= 0 && control.enabled() && control.reachable();
        default:
            return false;
    }
}

bool same_group(const Control& left, const Control& right) noexcept {
    return right.kind() == ControlKind::option_button && left.parent() == right.parent() && left.page() == right.page();
}

}  // namespace

FormWindow::FormWindow(forms::Form& form, WindowOwner& owner, const IconCharacters& icons)
    : form_(form), owner_(owner), icons_(icons), picture_{Canvas({0, 0}), {}, {}, std::nullopt} {
    form_.set_view(this);
}

FormWindow::~FormWindow() { form_.set_view(nullptr); }

const FormPicture& FormWindow::draw(bool active) {
    look_.active = active;
    look_.focus = focus();
    picture_ = draw_form(form_, look_, icons_);
    return picture_;
}

void FormWindow::changed(Control& /*control*/, forms::Change /*change*/) { owner_.invalidate(); }

void FormWindow::refresh(Control& /*control*/) { owner_.draw_now(); }

forms::Twips FormWindow::row_top(const forms::ListView& list, std::size_t row) const {
    const auto pane = pane_of(list);
    const PlacedControl* placed = picture_.find(list);
    if (!pane || placed == nullptr) return 0;
    return (pane->place_of(row) - placed->cells.top) * look_.scale.row;
}

std::optional<ListPane> FormWindow::pane_of(const forms::ListView& list) const {
    const PlacedControl* placed = picture_.find(list);
    if (placed == nullptr) return std::nullopt;
    return ListPane(list, placed->cells, look_.scale, look_.lists[&list]);
}

std::vector<Control*> FormWindow::tab_stops() const {
    std::vector<Control*> stops;
    for (Control* control : form_.keyboard_order()) {
        if (!takes_focus(*control)) continue;
        if (control->kind() == ControlKind::option_button && !static_cast<forms::OptionButton*>(control)->value()) {
            // A group of option buttons is one stop: the chosen one, or the first where none is chosen.
            const auto stands_for_group = [control](const Control* other) {
                return takes_focus(*other) && same_group(*control, *other) &&
                       static_cast<const forms::OptionButton*>(other)->value();
            };
            const auto& all = form_.controls();
            if (std::any_of(all.begin(), all.end(), stands_for_group)) continue;
            if (std::any_of(stops.begin(), stops.end(), [control](const Control* stop) {
                    return same_group(*control, *stop) && stop->kind() == ControlKind::option_button;
                })) {
                continue;
            }
        }
        stops.push_back(control);
    }
    return stops;
}

Control* FormWindow::focus() {
    if (focus_ != nullptr && takes_focus(*focus_)) return focus_;
    // What had the focus was disabled or left the screen: the nearest in the keyboard order has it now, of two
    // the earlier one.
    const std::vector<Control*> stops = tab_stops();
    const int last = focus_ == nullptr ? -1 : focus_->tab_index();
    const auto nearest =
        std::min_element(stops.begin(), stops.end(), [last](const Control* left, const Control* right) {
            return std::abs(left->tab_index() - last) < std::abs(right->tab_index() - last);
        });
    focus_ = nearest == stops.end() ? nullptr : *nearest;
    return focus_;
}

void FormWindow::set_focus(Control& control) noexcept {
    if (!takes_focus(control)) return;
    focus_ = &control;
    owner_.invalidate();
}

void FormWindow::move_focus(int direction) {
    const std::vector<Control*> stops = tab_stops();
    if (stops.empty()) return;
    const Control* current = focus();
    const auto count = static_cast<std::ptrdiff_t>(stops.size());
    const auto found = std::find(stops.begin(), stops.end(), current);
    std::ptrdiff_t at = found - stops.begin();
    if (found == stops.end()) {
        // An option button that is not the one that stands for its group.
        at = std::find_if(stops.begin(), stops.end(),
                          [current](const Control* stop) { return same_group(*current, *stop); }) -
             stops.begin();
    }
    set_focus(*stops[static_cast<std::size_t>((at + direction + count) % count)]);
}

void FormWindow::move_option(Control& option, int direction) {
    std::vector<Control*> group;
    for (Control* control : form_.controls()) {
        if (same_group(option, *control) && takes_focus(*control)) group.push_back(control);
    }
    const auto count = static_cast<std::ptrdiff_t>(group.size());
    const std::ptrdiff_t at = std::find(group.begin(), group.end(), &option) - group.begin();
    Control& next = *group[static_cast<std::size_t>((at + direction + count) % count)];
    set_focus(next);
    form_.raise_click(next);
}

}  // namespace vex::platform::native::terminal
