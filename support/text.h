// Splitting texts, and numbers as texts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vex {

/// The pieces between separators, empty ones included, nothing trimmed. An empty text has no pieces.
std::vector<std::u16string> split(std::u16string_view text, char16_t separator);

/// The decimal digits of a number, with a sign when it is negative.
std::u16string decimal_text(std::int32_t number);

}  // namespace vex
