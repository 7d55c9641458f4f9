// Splitting texts.
#include "support/text.h"

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

}  // namespace vex
