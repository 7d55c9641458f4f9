// Outside programs on the simulated computer: they are told of, and never started for real.
#include "platform/native/processes.h"

#include "platform/paths.h"

namespace vex::platform::native {

void SimulatedProcesses::set_listener(Listener listener) {
    const std::lock_guard lock(mutex_);
    listener_ = std::move(listener);
}

bool SimulatedProcesses::start(const std::u16string& path) {
    if (!is_full_path(path)) return false;
    std::error_code error;
    if (!std::filesystem::is_regular_file(files_.real_path(path), error)) return false;
    Listener listener;
    {
        const std::lock_guard lock(mutex_);
        listener = listener_;
    }
    if (listener) listener(path);
    return true;
}

}  // namespace vex::platform::native
