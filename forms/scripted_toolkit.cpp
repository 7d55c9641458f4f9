// The Toolkit without a screen.
#include "forms/scripted_toolkit.h"

namespace vex::forms {
namespace {

class ScriptedView final : public FormView {
public:
    void changed(Control& /*control*/, Change /*change*/) override {}
    void refresh(Control& /*control*/) override {}
    Twips row_top(const ListView& /*list*/, std::size_t row) const override {
        return ScriptedToolkit::kHeaderHeight + static_cast<Twips>(row) * ScriptedToolkit::kRowHeight;
    }
};

}  // namespace

void ScriptedToolkit::run_modal(Form& form, Form* /*owner*/) {
    ScriptedView view;
    form.set_view(&view);
    forms_.push_back(&form);
    user_.form_opened(form);
    form.raise_activate();
    while (form.running()) {
        if (user_.act(form)) continue;
        form.raise_close_request();
        if (form.running()) form.hide();
    }
    form.set_view(nullptr);
    forms_.pop_back();
    user_.form_closed(form);
}

void ScriptedToolkit::pump_messages() {
    if (Form* form = top()) user_.pumped(*form);
}

void ScriptedToolkit::pop_up_menu(Form& form, Menu& menu) {
    if (const MenuItem* item = user_.choose(menu)) form.raise_menu_click(*item);
}

}  // namespace vex::forms
