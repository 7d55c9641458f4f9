// Classes that a program registers for its own time, by their programmatic identifiers.
#pragma once

#include <string>

namespace vex::platform::win32 {

/// Whether the class of that name has a server of its own: then it belongs to an installed product.
bool class_has_server(const std::u16string& programmatic_id);

/// Removes the registration of a class, its class id's included. Nothing happens where there is none.
void remove_class(const std::u16string& programmatic_id);

}  // namespace vex::platform::win32
