// The Open dialog of the terminal: a field for a name or path, and the list of what fits it.
#pragma once

#include <optional>
#include <string>

#include "forms/toolkit.h"

namespace vex::platform::native::terminal {

/// Shows the drives of the simulated computer; answers the full path, or nothing when the user cancelled.
std::optional<std::u16string> ask_for_file(forms::Toolkit& toolkit, const forms::OpenFileRequest& request);

}  // namespace vex::platform::native::terminal
