// What the program does when no scenario is named.
#pragma once

#include "simulator/native/native_session.h"

namespace vex::sim {

/// Lets somebody try the plug-in on the sample displays. Raises `std::exception`.
ExitStatus play_without_scenario(const CommandLine& options);

}  // namespace vex::sim
