// The Toolkit on user32 and the common controls.
#pragma once

#include "forms/toolkit.h"

namespace vex::platform::win32 {

/// Has no state of its own: what a thread shows is known to that thread.
class Win32Toolkit final : public forms::Toolkit {
public:
    void run_modal(forms::Form& form, forms::Form* owner) override;
    void pump_messages() override;
    forms::MessageAnswer message_box(const forms::MessageBox& box) override;
    std::optional<std::u16string> open_file(const forms::OpenFileRequest& request) override;
    void pop_up_menu(forms::Form& form, forms::Menu& menu) override;
    void beep() override;
};

}  // namespace vex::platform::win32
