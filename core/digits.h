// Numbers as texts, and the values of digits.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>

namespace vex {

/// The digits of a number to a base of up to 16, in upper case and at least `width` of them.
inline std::u16string digits_of(std::uint64_t number, unsigned base, std::size_t width = 1) {
    std::u16string digits;
    for (; number != 0 || digits.size() < width; number /= base) digits += u"0123456789ABCDEF"[number % base];
    std::ranges::reverse(digits);
    return digits;
}

/// The decimal digits of a number, with a sign when it is negative.
inline std::u16string decimal_text(std::int64_t number) {
    const auto magnitude = static_cast<std::uint64_t>(number);
    return number < 0 ? u'-' + digits_of(0 - magnitude, 10) : digits_of(magnitude, 10);
}

/// The value of a hexadecimal digit of either case, or -1. For narrow and wide characters.
template <class Character>
constexpr int hex_value(Character digit) noexcept {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    return -1;
}

}  // namespace vex
