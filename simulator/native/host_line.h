// The simulated host's own line on the terminal: how far the work is, or which keys there are.
#pragma once

#include "platform/native/terminal/canvas.h"
#include "simulator/run_progress.h"

namespace vex::sim {

void draw_host_line(platform::native::terminal::Canvas& canvas, const platform::native::terminal::Area& line,
                    const RunProgress& progress);

}  // namespace vex::sim
