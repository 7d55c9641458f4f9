// The simulated host's own line on the terminal: how far the work is, or how it went.
#pragma once

#include <optional>
#include <string>

#include "platform/native/terminal/terminal_toolkit.h"
#include "simulator/run_progress.h"

namespace vex::sim {

/// Draws how far the run among the dialogs of `toolkit` is, or answers how it went.
std::optional<std::u32string> draw_host_line(platform::native::terminal::Canvas& canvas,
                                             const platform::native::terminal::Area& line,
                                             const platform::native::terminal::TerminalToolkit& toolkit,
                                             const RunProgress& progress);

}  // namespace vex::sim
