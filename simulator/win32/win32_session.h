// The Windows program's composition: real COM, real windows, a machine of its own for the plug-in, and what a program
// that plays a host does around its work.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "simulator/session.h"
#include "simulator/win32/win32_machine.h"
#include "simulator/win32/win32_screen.h"

namespace vex::sim {

/// The program's arguments, without its name, in UTF-8.
std::vector<std::string> program_arguments();

/// Whether the class of that name has a server of its own: then it belongs to an installed product.
bool class_has_server(const std::u16string& programmatic_id);

class Win32Session final : public Session {
public:
    /// Raises `RuntimeError` or `filesystem_error` when the data folder cannot be used, or when the classes of
    /// a real host are registered on this machine.
    explicit Win32Session(const CommandLine& options);
    ~Win32Session() override;

    /// On the desktop.
    int play_without_scenario() override;
    int print_controls() override;

private:
    Machine& machine() override { return *machine_; }
    Screen& screen() override { return *screen_; }

    std::optional<Win32Machine> machine_;
    std::optional<Win32Screen> screen_;
};

}  // namespace vex::sim
