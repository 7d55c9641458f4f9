// The hash value of names in type libraries.
#pragma once

#include <cstdint>
#include <string_view>

namespace vex::type_library {

/// The low word of the system's hash value of an ASCII name for U.S. English on 32-bit Windows: what type
/// libraries of that locale store. Letter case does not count.
std::uint16_t name_hash(std::string_view name) noexcept;

}  // namespace vex::type_library
