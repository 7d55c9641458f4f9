// What a program that plays a host does around its work: its arguments and streams, the same on every system, and the
// classes that it registers for its own time.
#pragma once

#include <string>
#include <vector>

namespace vex::sim {

/// The program's arguments, without its name, in UTF-8.
std::vector<std::string> program_arguments();

/// Standard input and output carry the bytes that the program reads and writes; a console shows UTF-8.
void use_plain_streams() noexcept;

/// Whether the class of that name has a server of its own: then it belongs to an installed product.
bool class_has_server(const std::u16string& programmatic_id);

/// Removes the registration of a class, its class id's included. Nothing happens where there is none.
void remove_class(const std::u16string& programmatic_id);

}  // namespace vex::sim
