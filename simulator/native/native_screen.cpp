// The screen where dialogs are data.
#include "simulator/native/native_screen.h"

#include <stdexcept>
#include <utility>

#include "core/unicode.h"
#include "simulator/words.h"

namespace vex::sim {

using forms::ControlKind;

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

std::vector<std::u16string> NativeScreen::control_names() const {
    std::vector<std::u16string> names;
    for (const forms::Control* control : form().controls()) names.push_back(from_utf8(control->name()));
    return names;
}

std::optional<ShownControl> NativeScreen::find(const std::u16string& name) const {
    const forms::Control* const found = any_dialog() ? form().find(to_utf8(name)) : nullptr;
    if (found == nullptr) return std::nullopt;
    ShownControl shown;
    shown.caption = found->caption();
    shown.enabled = found->enabled();
    shown.visible = found->visible();
    shown.takes_input = found->enabled() && found->reachable();
    switch (found->kind()) {
        case ControlKind::text_box: shown.kind = ShownControl::Kind::text_box; break;
        case ControlKind::option_button:
            shown.kind = ShownControl::Kind::option_button;
            shown.checked = static_cast<const forms::OptionButton&>(*found).value();
            break;
        case ControlKind::check_box:
            shown.kind = ShownControl::Kind::check_box;
            shown.checked = static_cast<const forms::CheckBox&>(*found).value() != 0;
            break;
        case ControlKind::shape:
            shown.kind = ShownControl::Kind::shape;
            shown.fill_color = static_cast<const forms::Shape&>(*found).fill_color();
            break;
        case ControlKind::tab_pages:
            shown.kind = ShownControl::Kind::pages;
            shown.page = static_cast<const forms::TabPages&>(*found).tab();
            break;
        case ControlKind::list_view:
            shown.kind = ShownControl::Kind::list;
            for (const forms::ListRow& row : static_cast<const forms::ListView&>(*found).rows()) {
                ShownRow& cells = shown.rows.emplace_back(ShownRow{{row.text}, row.fore_color});
                for (const forms::ListCell& cell : row.sub_items) cells.cells.push_back(cell.text);
            }
            break;
        default: break;
    }
    return shown;
}

void NativeScreen::look() {
    if (onlooker_ != nullptr && any_dialog()) onlooker_->sees(form());
}

std::u16string NativeScreen::dialog_name() const { return from_utf8(form().name()); }

void NativeScreen::do_click(const std::u16string& name) { form().raise_click(control(name)); }

void NativeScreen::do_press(const std::u16string& name, forms::MouseButton button, float x, float y) {
    form().raise_mouse_down(control(name), button, x, y);
}

void NativeScreen::do_type(const std::u16string& name, const std::u16string& text) {
    form().user_text(static_cast<forms::TextBox&>(control(name)), text);
}

bool NativeScreen::do_choose(const std::u16string& name, std::size_t row, const std::u16string& item) {
    auto& list = static_cast<forms::ListView&>(control(name));
    menu_item_ = item;
    const auto y = static_cast<float>(list.row_top(row)) + forms::ScriptedToolkit::kRowHeight / 2.0F;
    form().raise_mouse_down(list, forms::MouseButton::right, 1.0F, y);
    // Still there: no menu came up to choose from.
    return std::exchange(menu_item_, {}).empty();
}

// ---- What the toolkit asks of its user ----------------------------------------------------------------

void NativeScreen::form_opened(forms::Form& form) {
    if (user_ != nullptr) user_->form_opened(from_utf8(form.name()));
}

void NativeScreen::form_closed(forms::Form& form) {
    if (user_ != nullptr) user_->form_closed(from_utf8(form.name()));
}

bool NativeScreen::act(forms::Form& /*form*/) {
    look();
    return user_ != nullptr && user_->act();
}

void NativeScreen::pumped(forms::Form& /*form*/) {
    if (user_ != nullptr) user_->messages_handled();
}

forms::MessageAnswer NativeScreen::answer(const forms::MessageBox& box) {
    if (onlooker_ != nullptr) onlooker_->sees(box);
    if (user_ != nullptr) return user_->answer(box);
    return box.buttons == forms::MessageButtons::yes_no ? forms::MessageAnswer::yes : forms::MessageAnswer::ok;
}

std::optional<std::u16string> NativeScreen::choose_file(const forms::OpenFileRequest& request) {
    if (onlooker_ != nullptr) onlooker_->sees(request);
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
