// A dialog as data with events.
#include "forms/form.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace vex::forms {

Form::Form(Toolkit& toolkit, const FormDesign& design)
    : toolkit_(toolkit),
      name_(design.name),
      caption_(design.caption),
      width_(design.width),
      height_(design.height),
      font_(design.font),
      icon_(design.icon) {}

Form::~Form() = default;

void Form::lay_out(std::initializer_list<ControlDesign> controls) {
    for (const ControlDesign& line : controls) {
        Control& control = line.control;
        control.form_ = this;
        control.name_ = line.name;
        control.parent_ = line.parent;
        control.page_ = line.page;
        control.place_ = line.at;
        control.caption_ = line.text;
        control.tab_index_ = line.tab_index;
        control.font_ = line.font;
        control.fore_color_ = line.fore;
        control.back_color_ = line.back;
        control.visible_ = line.visible;
        control.accessible_name_ = line.accessible_name;
        controls_.push_back(&control);
    }
}

Control* Form::find(std::string_view name) const noexcept {
    for (Control* control : controls_) {
        if (control->name() == name) return control;
    }
    return nullptr;
}

std::vector<Control*> Form::keyboard_order() const {
    std::vector<Control*> order;
    add_in_keyboard_order(nullptr, order);
    return order;
}

void Form::add_in_keyboard_order(const Control* container, std::vector<Control*>& order) const {
    std::vector<Control*> inside;
    std::copy_if(controls_.begin(), controls_.end(), std::back_inserter(inside),
                 [container](const Control* control) { return control->parent() == container; });
    std::stable_sort(inside.begin(), inside.end(), [this](const Control* left, const Control* right) {
        return std::pair(left->page(), keyboard_position(*left)) < std::pair(right->page(), keyboard_position(*right));
    });
    for (Control* control : inside) {
        order.push_back(control);
        add_in_keyboard_order(control, order);
    }
}

int Form::keyboard_position(const Control& control) const noexcept {
    if (control.tab_index() >= 0) return control.tab_index();
    int position = std::numeric_limits<int>::max();
    if (control.kind() == ControlKind::panel || control.kind() == ControlKind::tab_pages) {
        // A container without a place of its own stands where its first control does.
        for (const Control* other : controls_) {
            if (other->parent() == &control) position = std::min(position, keyboard_position(*other));
        }
        return position;
    }
    // What takes no focus stands before the next control that does: a label before its field.
    const auto here = std::find(controls_.begin(), controls_.end(), &control);
    const auto next = std::find_if(here, controls_.end(), [&control](const Control* other) {
        return other->parent() == control.parent() && other->page() == control.page() && other->tab_index() >= 0;
    });
    return next == controls_.end() ? position : (*next)->tab_index();
}

void Form::show_modal(Form* owner) {
    try {
        if (!loaded_) {
            loaded_ = true;
            Form_Load();
        }
        // A dialog that unloaded itself while loading has nothing to show.
        if (!loaded_) return;
        shown_ = true;
        toolkit_.run_modal(*this, owner);
    } catch (...) {
        // What could not be loaded or shown starts again when it is shown again.
        loaded_ = false;
        shown_ = false;
        fault_ = nullptr;
        throw;
    }
    shown_ = false;
    if (fault_ != nullptr) std::rethrow_exception(std::exchange(fault_, nullptr));
}

bool Form::unload() { return unload_as(UnloadMode::code); }

bool Form::unload_as(UnloadMode mode) {
    if (!loaded_) return true;
    bool cancel = false;
    Form_QueryUnload(cancel, mode);
    if (cancel) return false;
    shown_ = false;
    loaded_ = false;
    Form_Unload();
    return true;
}

// A template, since a handler kept as std::function might need memory that has ended.
template <class Handler>
void Form::guarded(const Handler& handler) noexcept {
    try {
        handler();
    } catch (...) {
        // The first error is the cause; what follows it while the display ends is not.
        if (fault_ == nullptr) fault_ = std::current_exception();
    }
}

bool Form::may_unload(UnloadMode mode) noexcept {
    bool cancel = false;
    guarded([this, &cancel, mode] { Form_QueryUnload(cancel, mode); });
    return !cancel;
}

void Form::Form_QueryUnload(bool& /*cancel*/, UnloadMode /*mode*/) {}

void Form::raise_activate() noexcept {
    guarded([this] { Form_Activate(); });
}

void Form::raise_close_request(UnloadMode mode) noexcept {
    guarded([this, mode] { unload_as(mode); });
}

void Form::raise_click(Control& control) noexcept {
    if (!control.enabled() || !control.reachable()) return;
    guarded([&control] {
        if (control.kind() == ControlKind::option_button) static_cast<OptionButton&>(control).set_value(true);
        if (control.kind() == ControlKind::check_box) {
            auto& box = static_cast<CheckBox&>(control);
            box.set_value(box.value() == 0 ? 1 : 0);
        }
        if (control.on_click) control.on_click();
    });
}

void Form::raise_mouse_down(Control& control, MouseButton button, float x, float y) noexcept {
    if (!control.enabled() || !control.reachable()) return;
    Control* target = &control;
    for (Control* child : controls_) {
        if (child->parent() != &control || !child->reachable() || child->kind() == ControlKind::shape ||
            child->kind() == ControlKind::line) {
            continue;
        }
        const Rect& at = child->place();
        if (x >= static_cast<float>(at.left) && x < static_cast<float>(at.left + at.width) &&
            y >= static_cast<float>(at.top) && y < static_cast<float>(at.top + at.height)) {
            target = child;
        }
    }
    if (!target->on_mouse_down) return;
    guarded([target, button, x, y, &control] {
        const float left = target == &control ? 0.0F : static_cast<float>(target->place().left);
        const float top = target == &control ? 0.0F : static_cast<float>(target->place().top);
        target->on_mouse_down(button, x - left, y - top);
    });
}

void Form::raise_menu_click(const MenuItem& item) noexcept {
    if (item.on_click) guarded(item.on_click);
}

void Form::user_text(TextBox& box, std::u16string text) noexcept {
    guarded([&box, &text] {
        std::u16string& shown = static_cast<Control&>(box).caption_;
        const bool changed = shown != text;
        shown = std::move(text);
        if (changed && box.on_change) box.on_change();
    });
}

void Form::user_selection(ListView& list, std::optional<std::size_t> row) noexcept {
    guarded([this, &list, row] {
        FormView* view = std::exchange(view_, nullptr);
        list.select(row);
        view_ = view;
    });
}

void Form::changed(Control& control, Change change) {
    if (view_ != nullptr) view_->changed(control, change);
}

}  // namespace vex::forms
