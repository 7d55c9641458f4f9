// What the units of the displays hold now, as a table for people.
#pragma once

#include <ostream>

#include "simulator/host.h"

namespace vex::sim {

/// A line for each unit that does not hold what it held `before`, in the host's order of the displays; then how many
/// still do.
void print_changed_units(const Host& host, const Units& before, std::ostream& out);

}  // namespace vex::sim
