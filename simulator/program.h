// The program of the simulated host: its command line, its exit statuses, and the comparison of what it plays with what
// is recorded.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vex::sim {

/// How a run ended; the program's exit status.
enum ExitStatus { kPassed = 0, kFailed = 1, kBadUsage = 2 };

struct CommandLine {
    bool help = false;
    /// The scenarios to run, one unless they are compared; "-": standard input; nothing: none was named.
    std::vector<std::string> scenarios;
    /// Prints the size of each dialog, its controls and the columns of its list.
    bool controls = false;
    /// Compares each trace with the one recorded beside the scenario.
    bool compare = false;
    /// Records the traces anew instead.
    bool record = false;
    /// Keeps settings, drives and units; nothing: they are private to the run.
    std::optional<std::filesystem::path> data;
    /// Nothing: the plug-in beside the program.
    std::optional<std::filesystem::path> plugin;
    bool quiet = false;
    /// Draws each screen of a scenario as text.
    bool pictures = false;
    /// How many times as fast as usual the simulated links are, where somebody watches: 0.1 to 1000.
    double speed = 1;
};

/// Without the program's name. Raises `std::invalid_argument`.
CommandLine parse_command_line(std::span<const std::string> arguments);

class Session;

/// Makes a side's session. Raises `std::exception`.
using MakeSession = std::unique_ptr<Session> (*)(const CommandLine& options);

/// Does what the words say and answers the exit status. Scenarios are compared each in its own folder. One is as
/// recorded when it passes, its trace is that of FILE.trace, where what comes several times in a row is told once and
/// what one object is asked and says shares lines, and its messages are those of FILE.errors, or none where that file
/// is missing.
int run_program(std::span<const std::string> words, MakeSession make);

}  // namespace vex::sim
