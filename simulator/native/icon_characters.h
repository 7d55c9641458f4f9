// The characters that stand for icons on a terminal: the plug-in's own and the simulated host's.
#pragma once

#include "platform/native/terminal/list_pane.h"

namespace vex::sim {

inline platform::native::terminal::IconCharacters icon_characters() {
    return {{"NOTUPDATED", U'·'}, {"UPDATING", U'→'}, {"UPDATED", U'✓'},  {"FAILED", U'✗'},
            {"CANCELLED", U'○'},  {"MARKED", U'☑'},  {"UNMARKED", U'☐'}};
}

}  // namespace vex::sim
