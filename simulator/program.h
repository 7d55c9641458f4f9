// The program of the simulated host: its command line and its exit statuses.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace vex::sim {

/// How a run ended; the program's exit status.
enum ExitStatus { kPassed = 0, kFailed = 1, kBadUsage = 2 };

struct CommandLine {
    bool help = false;
    /// The scenarios to run, one unless they are compared; "-": standard input; nothing: none was named.
    std::vector<std::string> scenarios;
    /// Prints the controls of each dialog.
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
    /// How many times as fast as usual the simulated links are, where somebody watches.
    double speed = 1;
};

/// The range of `CommandLine::speed`.
constexpr double kSlowest = 0.1;
constexpr double kFastest = 1000;

/// Without the program's name. Raises `std::invalid_argument`.
CommandLine parse_command_line(std::span<const std::string> arguments);

std::string usage();

/// Does what the words say: tells the usage, or lets `play` do the rest. Tells of errors, and answers the exit status.
int run_program(std::span<const std::string> words, const std::function<int(const CommandLine& options)>& play);

}  // namespace vex::sim
