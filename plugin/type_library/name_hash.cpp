// The hash value of names in type libraries.
#include "plugin/type_library/name_hash.h"

namespace vex::type_library {

std::uint16_t name_hash(std::string_view name) noexcept {
    std::uint32_t value = 0x0DEADBEE;
    for (const char character : name) {
        const bool is_lower = character >= 'a' && character <= 'z';
        const auto folded = static_cast<unsigned char>(is_lower ? character - 'a' + 'A' : character);
        value = value * 37 + folded;
    }
    return static_cast<std::uint16_t>(value % 65599);
}

}  // namespace vex::type_library
