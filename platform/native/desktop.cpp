// Each thread's windowing system on the simulated computer.
#include "core/runtime_error.h"
#include "platform/native/machine.h"

namespace vex::platform::native {
namespace {

/// What a thread knows as its windowing system: always the one that was set last, so that dialogs which
/// outlive one (between two showings) find the next.
class Desktop final : public forms::Toolkit {
public:
    void set(forms::Toolkit* toolkit) noexcept { current_ = toolkit; }

    forms::Toolkit& current() const {
        if (current_ == nullptr) {
            throw RuntimeError(kCannotCreateObject, u"There is no desktop to show a dialog on");
        }
        return *current_;
    }

    void run_modal(forms::Form& form, forms::Form* owner) override { current().run_modal(form, owner); }
    void pump_messages() override { current().pump_messages(); }
    forms::MessageAnswer message_box(const forms::MessageBox& box) override { return current().message_box(box); }
    std::optional<std::u16string> open_file(const forms::OpenFileRequest& request) override {
        return current().open_file(request);
    }
    void pop_up_menu(forms::Form& form, forms::Menu& menu) override { current().pop_up_menu(form, menu); }
    void beep() override { current().beep(); }

private:
    forms::Toolkit* current_ = nullptr;
};

thread_local Desktop thread_desktop;

}  // namespace

void set_desktop(forms::Toolkit* toolkit) { thread_desktop.set(toolkit); }

forms::Toolkit& desktop() {
    thread_desktop.current();
    return thread_desktop;
}

}  // namespace vex::platform::native
