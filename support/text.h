// Texts: their pieces, and the numbers that they stand for.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/digits.h"

namespace vex {

/// The pieces between separators, empty ones included, nothing trimmed. An empty text has no pieces.
std::vector<std::u16string> split(std::u16string_view text, char16_t separator);

/// A text that must be a decimal number; it is rounded, a half to the even neighbour. Blanks around it, a sign, a
/// fraction and an exponent are fine. Raises kTypeMismatch for a text that is no number, kOverflow beyond the range.
std::int32_t to_int32(std::u16string_view text);
/// The same for a text that must be a whole number; raises kTypeMismatch when it is not.
std::int16_t to_int16(std::u16string_view text);

/// The number that a text begins with: decimal digits with one decimal point from the very first character,
/// up to the first other one. 0 when there is none.
double leading_number(std::u16string_view text);

}  // namespace vex
