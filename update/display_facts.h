// What a session reads out of a display's texts.
#pragma once

#include <string_view>

namespace vex {

/// Whether the controller's version text is of the family that always takes firmware: it begins with "KQS",
/// in any letter case.
bool is_kqs_controller(std::u16string_view version);

/// The number around the last "." of the controller's version text; 0 without a ".". Kept: only one
/// character before the point is read, so 12.00 counts as 2 and 10.9 as 0.9. Raises 5 when no character
/// precedes the point.
double version_number(std::u16string_view version);

/// The number that follows the last "." of a dotted address; 0 when there is none.
double host_number(std::u16string_view address);

/// The kind of LAN device server that a finder's description names: "XPort", "UDS", "MSS" (the first of
/// these that occurs, case-sensitive) or "Unknown".
std::u16string_view lan_box_type(std::u16string_view description);

}  // namespace vex
