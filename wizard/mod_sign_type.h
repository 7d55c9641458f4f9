// Which controller board a display has. Two tests on two different facts of the host, both on purpose: the
// type text drives what the wizard shows and hands on, the type code the network rule of the preselection.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/unicode.h"

namespace vex {

/// True for the TQ-1 boards: codes 160 to 169.
constexpr bool IsTQ1SignType(std::int16_t code) noexcept { return code >= 160 && code <= 169; }

/// True for a display type text that begins with "TQ-1 - ", in any letter case.
inline bool is_tq1_type_text(std::u16string_view type) {
    constexpr std::u16string_view kPrefix = u"TQ-1 - ";
    return equal_ignoring_case(type.substr(0, kPrefix.size()), kPrefix);
}

}  // namespace vex
