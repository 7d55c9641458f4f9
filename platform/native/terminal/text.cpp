// Text on the character grid.
#include "platform/native/terminal/text.h"

#include <clocale>
#include <cwchar>

#include "core/unicode.h"

namespace vex::platform::native::terminal {
namespace {

/// The C library's widths of Unicode characters, whatever the locale of the process.
int library_width(char32_t character) noexcept {
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (utf8 == nullptr) return 1;
    const locale_t before = uselocale(utf8);
    const int width = wcwidth(static_cast<wchar_t>(character));
    uselocale(before);
    return width;
}

bool is_line_end(char32_t character) noexcept { return character == U'\n' || character == U'\r'; }

/// One line without line ends.
void wrap_line(std::u32string_view line, int width, std::vector<std::u32string>& lines) {
    const std::size_t first = lines.size();
    while (true) {
        std::u32string_view part = beginning(line, width);
        if (part.empty() && !line.empty()) part = line.substr(0, 1);
        std::size_t next = part.size();
        if (next < line.size() && line[next] != U' ') {
            const std::size_t blank = part.find_last_of(U' ');
            if (blank != std::u32string_view::npos && part.find_first_not_of(U' ') < blank) {
                part = part.substr(0, blank);
                next = blank;
            }
        }
        while (next < line.size() && line[next] == U' ') ++next;
        while (!part.empty() && part.back() == U' ') part.remove_suffix(1);
        if (!part.empty() || lines.size() == first) lines.emplace_back(part);
        line.remove_prefix(next);
        if (line.empty()) return;
    }
}

}  // namespace

std::u32string to_utf32(std::u16string_view text) {
    std::u32string characters;
    characters.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        const bool high = unit >= 0xD800 && unit < 0xDC00;
        if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            characters.push_back(0x10000 + ((unit - 0xD800) << 10) + (static_cast<char32_t>(text[++i]) - 0xDC00));
        } else {
            characters.push_back(unit >= 0xD800 && unit < 0xE000 ? U'\uFFFD' : unit);
        }
    }
    return characters;
}

std::u16string to_utf16(std::u32string_view text) {
    std::u16string units;
    units.reserve(text.size());
    for (const char32_t character : text) {
        if (character < 0x10000) {
            units.push_back(static_cast<char16_t>(character));
        } else {
            units.push_back(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
            units.push_back(static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
        }
    }
    return units;
}

std::string to_utf8(std::u32string_view text) { return vex::to_utf8(to_utf16(text)); }

int character_width(char32_t character) noexcept {
    if (character < 0x7F) return 1;
    const int width = library_width(character);
    return width < 0 ? 1 : width;
}

int text_width(std::u32string_view text) noexcept {
    int width = 0;
    for (const char32_t character : text) width += character_width(character);
    return width;
}

std::u32string_view beginning(std::u32string_view text, int width) noexcept {
    int used = 0;
    std::size_t length = 0;
    while (length < text.size()) {
        used += character_width(text[length]);
        if (used > width) break;
        ++length;
    }
    return text.substr(0, length);
}

std::u32string shorten(std::u32string_view text, int width, Cut cut) {
    if (text_width(text) <= width) return std::u32string(text);
    if (width <= 0) return {};
    const int tail = cut == Cut::end ? 0 : cut == Cut::start ? width - 1 : (width - 1) / 2;
    std::size_t start = text.size();
    for (int used = 0; start > 0; --start) {
        used += character_width(text[start - 1]);
        if (used > tail) break;
    }
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
    std::size_t start = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !is_line_end(text[i])) continue;
        wrap_line(text.substr(start, i - start), width, lines);
        if (i + 1 < text.size() && text[i] == U'\r' && text[i + 1] == U'\n') ++i;
        start = i + 1;
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

bool same_letter(char32_t left, char32_t right) noexcept {
    const auto upper = [](char32_t character) {
        return character < 0x10000 ? static_cast<char32_t>(vex::to_upper(static_cast<char16_t>(character))) : character;
    };
    return upper(left) == upper(right);
}

}  // namespace vex::platform::native::terminal
