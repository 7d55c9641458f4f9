// The Windows program's composition: real COM, real windows, and a computer of its own for the plug-in.
#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>

#include "simulator/command_line.h"
#include "simulator/private_folder.h"
#include "simulator/run.h"
#include "simulator/win32/win32_computer.h"
#include "simulator/win32/win32_screen.h"

namespace vex::sim {

/// One per process. Used on the thread that made it.
class Win32Session {
public:
    /// Raises `RuntimeError` or `filesystem_error` when the data folder cannot be used, or when the classes of
    /// a real host are registered on this computer.
    explicit Win32Session(CommandLine options);
    Win32Session(const Win32Session&) = delete;
    Win32Session& operator=(const Win32Session&) = delete;
    ~Win32Session();

    /// Plays the scenario of that file; "-": standard input. Raises `std::exception` for one that is missing
    /// or bad. The trace goes to `out`, everything else to `errors`.
    ExitStatus play(const std::string& file, std::ostream& out, std::ostream& errors);

    // For who uses the host in another way.

    Win32Computer& computer() noexcept { return *computer_; }
    Win32Screen& screen() noexcept { return *screen_; }
    /// `scenario`: where relative files of a scenario lie.
    RunFolders folders(const std::filesystem::path& scenario) const;
    /// Raises `TextError`.
    static Scenario read_scenario(const std::filesystem::path& file);

    /// The folder that this program lies in, and that of the samples.
    static std::filesystem::path program_folder();
    static std::filesystem::path samples_folder() { return program_folder() / "samples"; }

private:
    CommandLine options_;
    std::optional<PrivateFolder> private_;
    std::filesystem::path data_;
    std::filesystem::path plugin_;
    std::optional<Win32Computer> computer_;
    std::optional<Win32Screen> screen_;
};

}  // namespace vex::sim
