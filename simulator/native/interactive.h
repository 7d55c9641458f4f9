// What the program does when no scenario is named.
#pragma once

#include "simulator/native/native_session.h"

namespace vex::sim {

/// Lets somebody try the plug-in on the terminal; where there is none, plays the sample scenario and draws its
/// screens. Answers the program's exit status. Raises `std::exception`.
int play_without_scenario(const CommandLine& options);

/// Opens each of the plug-in's dialogs and prints what controls it has.
int print_controls(const CommandLine& options);

}  // namespace vex::sim
