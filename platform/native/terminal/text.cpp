// Text on the character grid.
#include "platform/native/terminal/text.h"

#include <algorithm>
#include <clocale>
#include <cwchar>

#include "core/unicode.h"

namespace vex::platform::native::terminal {
namespace {

/// One line; without a carriage return at its end.
void wrap_line(std::u32string_view line, int width, std::vector<std::u32string>& lines) {
    if (line.ends_with(U'\r')) line.remove_suffix(1);
    const std::size_t first = lines.size();
    do {
        std::size_t end = std::max<std::size_t>(beginning(line, width).size(), 1);
        if (end < line.size() && line[end] != U' ') {
            const std::size_t blank = line.substr(0, end).find_last_of(U' ');
            if (blank != line.npos && line.find_first_not_of(U' ') < blank) end = blank;
        }
        const std::u32string_view part = line.substr(0, end);
        line.remove_prefix(std::min(line.find_first_not_of(U' ', end), line.size()));
        const std::size_t last = part.find_last_not_of(U' ');
        if (last != part.npos || lines.size() == first) lines.emplace_back(part.substr(0, last + 1));
    } while (!line.empty());
}

}  // namespace

std::u32string to_utf32(std::u16string_view text) {
    std::u32string characters;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        const char32_t next = i + 1 < text.size() ? text[i + 1] : 0;
        const bool pair = unit >> 10 == 0x36 && next >> 10 == 0x37;
        characters += pair ? 0x10000 + ((unit & 0x3FF) << 10) + (next & 0x3FF) : unit >> 11 == 0x1B ? U'\uFFFD' : unit;
        if (pair) ++i;
    }
    return characters;
}

std::u16string to_utf16(std::u32string_view text) {
    std::u16string units;
    for (const char32_t character : text) {
        const bool pair = character >= 0x10000;
        if (pair) units += static_cast<char16_t>(0xD7C0 + (character >> 10));
        units += static_cast<char16_t>(pair ? 0xDC00 + (character & 0x3FF) : character);
    }
    return units;
}

std::string to_utf8(std::u32string_view text) { return vex::to_utf8(to_utf16(text)); }

int character_width(char32_t character) noexcept {
    // The C library's widths of Unicode characters, whatever the locale of the process.
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (character < 0x7F || utf8 == nullptr) return 1;
    const locale_t before = uselocale(utf8);
    const int width = wcwidth(static_cast<wchar_t>(character));
    uselocale(before);
    return width < 0 ? 1 : width;
}

int text_width(std::u32string_view text) noexcept {
    int width = 0;
    for (const char32_t character : text) width += character_width(character);
    return width;
}

std::u32string_view beginning(std::u32string_view text, int width) noexcept {
    std::size_t length = 0;
    while (length < text.size() && (width -= character_width(text[length])) >= 0) ++length;
    return text.substr(0, length);
}

std::u32string shorten(std::u32string_view text, int width, Cut cut) {
    if (text_width(text) <= width) return std::u32string(text);
    if (width <= 0) return {};
    const int tail = cut == Cut::end ? 0 : cut == Cut::start ? width - 1 : (width - 1) / 2;
    std::size_t start = text.size();
    for (int left = tail; (left -= character_width(text[start - 1])) >= 0;) --start;
    return std::u32string(beginning(text, width - 1 - tail)).append(U"…").append(text.substr(start));
}

std::size_t first_seen(std::u32string_view text, std::size_t at, int width) noexcept {
    std::size_t first = 0;
    for (int used = text_width(text.substr(0, at)); first < at && used >= width; ++first) {
        used -= character_width(text[first]);
    }
    return first;
}

std::vector<std::u32string> wrap(std::u32string_view text, int width) {
    std::vector<std::u32string> lines;
    for (std::size_t end = 0; end != text.npos; text.remove_prefix(end == text.npos ? 0 : end + 1)) {
        end = text.find(U'\n');
        wrap_line(text.substr(0, end), width, lines);
    }
    return lines;
}

Caption parse_caption(std::u16string_view caption) {
    Caption parsed;
    const std::u32string marked = to_utf32(caption);
    for (std::size_t i = 0; i < marked.size(); ++i) {
        if (marked[i] == U'&' && i + 1 < marked.size()) {
            ++i;
            if (marked[i] != U'&' && !parsed.mnemonic) parsed.mnemonic = parsed.text.size();
        }
        parsed.text.push_back(marked[i]);
    }
    return parsed;
}

}  // namespace vex::platform::native::terminal
