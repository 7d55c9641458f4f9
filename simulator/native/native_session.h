// The native program's composition: a simulated computer, a screen, COM, and what is played on them.
#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>

#include "simulator/command_line.h"
#include "simulator/native/native_computer.h"
#include "simulator/native/native_screen.h"
#include "simulator/private_folder.h"
#include "simulator/run.h"

namespace vex::sim {

/// One per process. Used on the thread that made it.
class NativeSession {
public:
    /// Raises `RuntimeError` or `filesystem_error` when the data folder cannot be used.
    explicit NativeSession(CommandLine options);
    NativeSession(const NativeSession&) = delete;
    NativeSession& operator=(const NativeSession&) = delete;
    ~NativeSession();

    /// Plays the scenario of that file; "-": standard input. Raises `std::exception` for one that is missing
    /// or bad. The trace goes to `out`, everything else to `errors`.
    ExitStatus play(const std::string& file, std::ostream& out, std::ostream& errors);
    /// The same for a text; `folder`: where its relative files lie.
    ExitStatus play_text(const std::string& name, const std::string& text, const std::filesystem::path& folder,
                         std::ostream& out, std::ostream& errors);

    // For who uses the host in another way.

    Computer& computer() noexcept { return computer_; }
    NativeScreen& screen() noexcept { return screen_; }
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
    NativeComputer computer_;
    NativeScreen screen_;
};

}  // namespace vex::sim
