// The simulated host's own line on the terminal: how far the work is, or how it went and which keys there are.
#pragma once

#include <string>

#include "platform/native/terminal/terminal_toolkit.h"
#include "simulator/run_progress.h"

namespace vex::sim {

/// Draws the line for the dialogs that `toolkit` shows.
void draw_host_line(platform::native::terminal::Canvas& canvas, const platform::native::terminal::Area& line,
                    const std::u32string& keys, const platform::native::terminal::TerminalToolkit& toolkit,
                    const RunProgress& progress);

}  // namespace vex::sim
