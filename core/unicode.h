// UTF-8 to UTF-16 and back, the same on every platform.
#pragma once

#include <string>
#include <string_view>

namespace vex {

/// Malformed sequences become U+FFFD, one for each byte that starts none.
std::u16string from_utf8(std::string_view bytes);
/// Unpaired surrogates become U+FFFD.
std::string to_utf8(std::u16string_view text);

/// Upper case, character by character: ASCII, Latin-1 and Windows-1252 letters.
char16_t to_upper(char16_t character) noexcept;
std::u16string to_upper(std::u16string_view text);
/// Equality by `to_upper`.
bool equal_ignoring_case(std::u16string_view left, std::u16string_view right) noexcept;

}  // namespace vex
