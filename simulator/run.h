// One run of the simulated host, from its data to the last look at what is left.
#pragma once

#include <exception>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

#include "simulator/computer.h"
#include "simulator/scenario.h"
#include "simulator/scenario_player.h"
#include "simulator/screen.h"

namespace vex::sim {

/// Where a run's parts lie.
struct RunFolders {
    /// The host's units; its displays lie on the computer's own drive.
    std::filesystem::path data;
    std::filesystem::path plugin_library;
    /// Relative files of the scenario.
    std::filesystem::path scenario;
};

/// What a user is told of an error.
std::string message_of(const std::exception& error);

/// Loads what the host kept, registers the host's classes, loads the plug-in, does the `work`, keeps what the
/// units hold, lets everything go and looks for what stayed behind. Needs an initialised apartment. The trace
/// goes to `out`, everything else to `errors`.
ExitStatus run_host(Computer& computer, const RunFolders& folders, bool quiet, std::ostream& out, std::ostream& errors,
                    const std::function<ExitStatus(Host& host, PluginHost& plugin)>& work);

/// The same with a scenario as the work.
ExitStatus run_scenario(const Scenario& scenario, Computer& computer, Screen& screen, const RunFolders& folders,
                        bool quiet, std::ostream& out, std::ostream& errors);

}  // namespace vex::sim
