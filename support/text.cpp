// Splitting texts, and numbers as texts.
#include "support/text.h"

#include <charconv>

namespace vex {

std::vector<std::u16string> split(std::u16string_view text, char16_t separator) {
    std::vector<std::u16string> pieces;
    if (text.empty()) return pieces;
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find(separator, start);
        pieces.emplace_back(text.substr(start, end - start));
        if (end == std::u16string_view::npos) return pieces;
        start = end + 1;
    }
}

std::u16string decimal_text(std::int32_t number) {
    char digits[12];
    const char* end = std::to_chars(digits, digits + sizeof(digits), number).ptr;
    return std::u16string(static_cast<const char*>(digits), end);
}

}  // namespace vex
