// Splitting texts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vex {

/// The pieces between separators, empty ones included, nothing trimmed. An empty text has no pieces.
std::vector<std::u16string> split(std::u16string_view text, char16_t separator);

}  // namespace vex
