// The simulated computer's ANSI code page, Windows-1252: one byte for each character. The five bytes without a
// character stand for the control characters of the same number, as on Windows, so that every byte survives both ways.
// What the page cannot hold becomes "?", once for each half of a surrogate pair.
#include <algorithm>
#include <iterator>

#include "platform/system.h"

namespace vex::platform {
namespace {

/// Bytes 0x80 to 0x9F; all others stand for the character of the same number.
constexpr char16_t kUpperControls[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};
constexpr unsigned kTableStart = 0x80;

char to_byte(char16_t character) {
    if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) return static_cast<char>(character);
    const auto* found = std::find(std::begin(kUpperControls), std::end(kUpperControls), character);
    if (found == std::end(kUpperControls)) return '?';
    return static_cast<char>(kTableStart + static_cast<unsigned>(found - kUpperControls));
}

char16_t to_character(char byte) {
    const unsigned number = static_cast<unsigned char>(byte);
    const bool in_table = number >= kTableStart && number < kTableStart + std::size(kUpperControls);
    return in_table ? kUpperControls[number - kTableStart] : static_cast<char16_t>(number);
}

}  // namespace

std::string to_ansi(std::u16string_view text) {
    std::string bytes(text.size(), '\0');
    std::transform(text.begin(), text.end(), bytes.begin(), to_byte);
    return bytes;
}

std::u16string from_ansi(std::string_view bytes) {
    std::u16string text(bytes.size(), u'\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(), to_character);
    return text;
}

}  // namespace vex::platform
