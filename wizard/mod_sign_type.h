// Which controller board a display has, by the host's numeric sign type code.
#pragma once

#include <cstdint>

namespace vex {

/// True for the TQ-1 boards: codes 160 to 169.
constexpr bool IsTQ1SignType(std::int16_t code) noexcept { return code >= 160 && code <= 169; }

}  // namespace vex
