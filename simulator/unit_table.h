// What the units of all displays hold, as a table for people.
#pragma once

#include <ostream>

#include "simulator/host.h"

namespace vex::sim {

/// A line for each unit, in the host's order of the displays.
void print_units(const Host& host, std::ostream& out);

}  // namespace vex::sim
