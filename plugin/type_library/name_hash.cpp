// The hash value of names in type libraries.
#include "plugin/type_library/name_hash.h"

namespace vex::type_library {
namespace {

/// What a character counts as: letters without regard to case, and two of them as the locale's tables have it.
std::uint32_t weight(char character) noexcept {
    const bool is_lower = character >= 'a' && character <= 'z';
    const char upper = static_cast<char>(is_lower ? character - 'a' + 'A' : character);
    switch (upper) {
        case 'W': return 'V';
        case 'Y': return 'U';
        default: return static_cast<unsigned char>(upper);
    }
}

}  // namespace

std::uint16_t name_hash(std::string_view name) noexcept {
    std::uint32_t value = 0x0DEADBEE;
    for (const char character : name) value = value * 37 + weight(character);
    return static_cast<std::uint16_t>(value % 65599);
}

}  // namespace vex::type_library
