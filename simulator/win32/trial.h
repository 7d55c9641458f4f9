// A trial of the plug-in on the desktop: the simulated host, sample displays, and a person in front of them.
#pragma once

#include "simulator/win32/win32_session.h"

namespace vex::sim {

/// Opens the plug-in's wizard and prints what the units hold when it is closed. Raises `std::exception`.
ExitStatus run_trial(Win32Session& session, const CommandLine& options);

}  // namespace vex::sim
