// The command line of the simulated host.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

namespace vex::sim {

struct CommandLine {
    bool help = false;
    /// The scenario to run; "-": standard input; nothing: no scenario was named.
    std::optional<std::string> scenario;
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

}  // namespace vex::sim
