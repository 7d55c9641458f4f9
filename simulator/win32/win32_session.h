// The Windows program's composition: real COM, real windows, and a machine of its own for the plug-in.
#pragma once

#include <optional>

#include "simulator/session.h"
#include "simulator/win32/win32_machine.h"
#include "simulator/win32/win32_screen.h"

namespace vex::sim {

class Win32Session final : public Session {
public:
    /// Raises `RuntimeError` or `filesystem_error` when the data folder cannot be used, or when the classes of
    /// a real host are registered on this machine.
    explicit Win32Session(const CommandLine& options);
    ~Win32Session();

    Win32Machine& machine() noexcept override { return *machine_; }

private:
    Screen& screen() noexcept override { return *screen_; }

    std::optional<Win32Machine> machine_;
    std::optional<Win32Screen> screen_;
};

}  // namespace vex::sim
