// The screen where dialogs are data.
#include "simulator/native/native_screen.h"

#include <stdexcept>
#include <utility>

#include "platform/native/terminal/terminal_toolkit.h"

namespace vex::sim {
namespace {

namespace terminal = platform::native::terminal;

/// A toolkit that shows nothing, and keeps the picture of what it is asked to show.
class Camera final : public terminal::TerminalToolkit, private terminal::Screen {
public:
    Camera() : TerminalToolkit(static_cast<terminal::Screen&>(*this), icon_characters()) {}

    std::string picture(const Sight& sight) {
        if (auto* const* form = std::get_if<forms::Form*>(&sight)) run_modal(**form, nullptr);
        if (const auto* const* box = std::get_if<const forms::MessageBox*>(&sight)) message_box(**box);
        if (const auto* const* request = std::get_if<const forms::OpenFileRequest*>(&sight)) open_file(**request);
        return picture_;
    }

private:
    void run_modal(forms::Form& form, forms::Form* /*owner*/) override { picture_ = picture_of(form); }

    terminal::Size size() const override { return terminal::kSmallestTerminal; }
    void show(const terminal::Canvas& /*canvas*/, std::optional<terminal::Point> /*cursor*/) override {}
    std::optional<terminal::Input> read(bool /*wait*/) override { return std::nullopt; }
    void beep() override {}

    std::string picture_;
};

}  // namespace

Onlooker pictures(std::ostream& out) {
    return [&out, last = std::string()](const Sight& sight) mutable {
        const std::string picture = Camera().picture(sight);
        if (picture == last) return;
        out << picture << '\n';
        last = picture;
    };
}

terminal::IconCharacters icon_characters() {
    return {{"NOTUPDATED", U'·'}, {"UPDATING", U'→'}, {"UPDATED", U'✓'}, {"FAILED", U'✗'},
            {"CANCELLED", U'○'},  {"MARKED", U'☑'},   {"UNMARKED", U'☐'}};
}

forms::Form& NativeScreen::form() const {
    forms::Form* const top = toolkit_.top();
    if (top == nullptr) throw std::invalid_argument("no dialog is open");
    return *top;
}

std::optional<ShownControl> NativeScreen::find(const std::u16string& name) const {
    const forms::Control* const found = any_dialog() ? form().find(to_utf8(name)) : nullptr;
    if (found == nullptr) return std::nullopt;
    ShownControl shown;
    shown.caption = found->caption();
    shown.enabled = found->enabled();
    shown.visible = found->visible();
    shown.takes_input = found->enabled() && found->reachable();
    shown.kind = found->kind();
    if (const auto* option = dynamic_cast<const forms::OptionButton*>(found)) shown.checked = option->value();
    if (const auto* check = dynamic_cast<const forms::CheckBox*>(found)) shown.checked = check->value() != 0;
    if (const auto* shape = dynamic_cast<const forms::Shape*>(found)) shown.fill_color = shape->fill_color();
    if (const auto* pages = dynamic_cast<const forms::TabPages*>(found)) shown.page = pages->tab();
    if (const auto* list = dynamic_cast<const forms::ListView*>(found)) {
        for (const forms::ListRow& row : list->rows()) {
            ShownRow& cells = shown.rows.emplace_back(ShownRow{{row.text}, row.fore_color});
            for (const forms::ListCell& cell : row.sub_items) cells.cells.push_back(cell.text);
        }
    }
    return shown;
}

std::vector<std::u16string> NativeScreen::control_names() const {
    std::vector<std::u16string> names;
    for (const forms::Control* control : form().controls()) names.push_back(from_utf8(control->name()));
    return names;
}

bool NativeScreen::do_choose(const std::u16string& name, std::size_t row, const std::u16string& item) {
    auto& list = static_cast<forms::ListView&>(form_control(name));
    menu_item_ = item;
    const auto y = static_cast<float>(list.row_top(row)) + forms::ScriptedToolkit::kRowHeight / 2.0F;
    form().raise_mouse_down(list, forms::MouseButton::right, 1.0F, y);
    // Still there: no menu came up to choose from.
    return std::exchange(menu_item_, {}).empty();
}

const forms::MenuItem* NativeScreen::choose(const forms::Menu& menu) {
    const std::u16string wanted = std::exchange(menu_item_, {});
    for (const forms::MenuItem& item : menu.items) {
        if (!wanted.empty() && item.caption == wanted) return &item;
    }
    return nullptr;
}

}  // namespace vex::sim
