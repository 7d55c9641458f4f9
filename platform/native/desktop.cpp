// Each thread's windowing system on the simulated computer.
#include "core/runtime_error.h"
#include "platform/native/machine.h"

namespace vex::platform::native {
namespace {

thread_local forms::Toolkit* current_desktop = nullptr;

}  // namespace

void set_desktop(forms::Toolkit* toolkit) { current_desktop = toolkit; }

forms::Toolkit& desktop() {
    if (current_desktop == nullptr) throw RuntimeError(kCannotCreateObject, u"There is no desktop to show a dialog on");
    return *current_desktop;
}

}  // namespace vex::platform::native
