// A trial of the plug-in on the terminal: the simulated host, sample displays, and a person in front of them.
#pragma once

#include <optional>
#include <string>

#include "platform/native/terminal/terminal_toolkit.h"
#include "simulator/native/native_session.h"
#include "simulator/trial.h"

namespace vex::sim {

/// Draws on the host's own line how far the run among the dialogs of `toolkit` is, or answers how it went.
std::optional<std::u32string> draw_host_line(platform::native::terminal::Canvas& canvas,
                                             const platform::native::terminal::Area& line,
                                             const platform::native::terminal::TerminalToolkit& toolkit,
                                             const RunProgress& progress);

/// Opens the plug-in's wizard on the terminal, which must be usable, and prints what the units hold when it is
/// closed. Answers the program's exit status. Raises `std::exception`.
int run_trial(NativeSession& session, const CommandLine& options);

}  // namespace vex::sim
