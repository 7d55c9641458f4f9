// Where the host is installed.
#pragma once

#include <string>

#include "support/services.h"

namespace vex {

/// The host's installation folder, ending in a backslash: its setting, else the plug-in's own folder.
std::u16string host_installation_folder(const Services& services);

}  // namespace vex
