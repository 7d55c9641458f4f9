// Plays scenarios and compares each trace with the one that is recorded beside it.
#pragma once

#include <functional>
#include <ostream>
#include <string>

#include "simulator/program.h"

namespace vex::sim {

/// Plays one scenario file on a host of its own; the trace goes to `out`, messages to `errors`.
using PlayScenario = std::function<ExitStatus(const CommandLine& options, const std::string& file, std::ostream& out,
                                              std::ostream& errors)>;

/// Plays each of the scenarios in its own folder. A scenario is as recorded when it passes, its trace is that of
/// FILE.trace, where what comes several times in a row is told once and what one object is asked and says shares lines,
/// and its messages are those of FILE.errors, or none where that file is missing. Prints a line for each, and what
/// differs.
ExitStatus compare_scenarios(const CommandLine& options, const PlayScenario& play, std::ostream& out);

}  // namespace vex::sim
