// The simulated host's two controls, the transmission control and the finder of LAN device servers, with the connection
// settings and the sign information that go with them.
#pragma once

#include <vector>

#include "simulator/class_library.h"

namespace vex::sim {

/// HostConnection, HostSignInfo, vexDispTrans and vexLANBoxFinder2.
std::vector<HostClass> control_classes();

/// Where the plug-in's event stands among the events of either control.
inline constexpr DISPID kHandledEvent = 9;

/// Whether it is a member of the transmission control, which can speak meanwhile.
bool speaks(Operation operation) noexcept;

}  // namespace vex::sim
