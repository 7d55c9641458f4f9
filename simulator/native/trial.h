// A trial of the plug-in on the terminal: the simulated host, sample displays, and a person in front of them.
#pragma once

#include "simulator/native/native_session.h"

namespace vex::sim {

/// Opens the plug-in's wizard on the terminal, which must be usable, and prints what the units hold when it is
/// closed. Answers the program's exit status. Raises `std::exception`.
int run_trial(NativeSession& session, const CommandLine& options);

}  // namespace vex::sim
