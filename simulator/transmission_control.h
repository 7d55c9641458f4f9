// The simulated host's transmission control, with the connection settings and the sign information that go with it.
#pragma once

#include <vector>

#include "simulator/class_library.h"

namespace vex::sim {

/// vexDispTrans, HostConnection and HostSignInfo.
std::vector<HostClass> transmission_classes();

/// Whether it is a member of the transmission control, which can speak meanwhile.
bool speaks(Operation operation) noexcept;

}  // namespace vex::sim
