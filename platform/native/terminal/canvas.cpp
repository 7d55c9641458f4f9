// A grid of character cells to draw on, and text for it.
#include "platform/native/terminal/canvas.h"

#include <clocale>
#include <cwchar>

#include "core/unicode.h"

namespace vex::platform::native::terminal {
namespace {

constexpr int kUp = 1, kRight = 2, kDown = 4, kLeft = 8;

/// The line character with the given arms.
constexpr std::u32string_view kLineCharacters = U" │─└││┌├─┘─┴┐┤┬┼";

bool is_control(char32_t character) noexcept {
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x2028 || character == 0x2029;
}

/// Characters without width that mark nothing: joiners, directions, the byte order mark.
bool is_format(char32_t character) noexcept {
    return (character >= 0x200B && character <= 0x200F) || (character >= 0x202A && character <= 0x202E) ||
           (character >= 0x2060 && character <= 0x206F) || character == 0xFEFF ||
           (character >= 0xE0000 && character <= 0xE0FFF);
}

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

Color color_of(forms::Color color) noexcept {
    switch (color) {
        case forms::kWhite: return Color::white;
        case forms::kRed: return Color::red;
        case forms::kBlue: return Color::blue;
        case forms::kGreen: return Color::bright_green;
        case forms::kGrey: return Color::light_grey;
        case forms::kDarkGrey: return Color::dark_grey;
        // The light green of a finished display; on white it would not be read.
        case forms::rgb(100, 255, 100): return Color::green;
        default: return Color::black;
    }
}

Canvas::Canvas(Size size, const Style& style)
    : size_(size),
      clip_(area()),
      cells_(static_cast<std::size_t>(size.columns) * static_cast<std::size_t>(size.rows), Cell{.style = style}) {}

void Canvas::put(Point at, Cell cell) noexcept {
    if (!clip_.contains(at)) return;
    Cell& target = cells_[index(at)];
    // No half of a wide character stays behind alone.
    if (target.tail && !cell.tail && at.column > 0) cells_[index({at.column - 1, at.row})].character = U' ';
    if (at.column + 1 < size_.columns && !target.tail) cells_[index({at.column + 1, at.row})].tail = false;
    if (cell.style.back == Color::as_before) cell.style.back = target.style.back;
    target = cell;
}

void Canvas::fill(const Area& area, const Style& style, char32_t character) noexcept {
    for (int row = area.top; row < area.bottom; ++row) {
        for (int column = area.left; column < area.right; ++column) {
            put({column, row}, {.character = character, .style = style});
        }
    }
}

int Canvas::text(Point at, std::u32string_view text, const Style& style) noexcept {
    Cell* last = nullptr;
    for (char32_t character : text) {
        if (is_control(character)) character = U'\uFFFD';
        if (is_format(character)) continue;
        const int width = character_width(character);
        if (width == 0) {
            if (last == nullptr) continue;
            const auto free = std::find(last->marks.begin(), last->marks.end(), U'\0');
            if (free != last->marks.end()) *free = character;
            continue;
        }
        // A wide character that the clip would cut is not drawn at all.
        const bool whole = clip_.contains({at.column + width - 1, at.row});
        put(at, {.character = whole ? character : U' ', .style = style});
        last = whole && clip_.contains(at) ? &cells_[index(at)] : nullptr;
        if (last != nullptr && width == 2) put({at.column + 1, at.row}, {.tail = true, .style = style});
        at.column += width;
    }
    return at.column;
}

void Canvas::line(Point from, Point to, Color color) noexcept {
    const bool upright = from.column == to.column && from.row != to.row;
    const int length = upright ? to.row - from.row : to.column - from.column;
    for (int step = 0; step <= length; ++step) {
        const Point at = upright ? Point{from.column, from.row + step} : Point{from.column + step, from.row};
        if (!clip_.contains(at)) continue;
        // A line of one cell is still a line.
        const int back = step > 0 || length == 0 ? (upright ? kUp : kLeft) : 0;
        const int forth = step < length || length == 0 ? (upright ? kDown : kRight) : 0;
        const auto arms = static_cast<std::uint8_t>(cells_[index(at)].arms | back | forth);
        put(at, {.character = kLineCharacters[arms], .arms = arms, .style = {.fore = color}});
    }
}

void Canvas::paste(const Canvas& other, Point at) noexcept {
    for (int row = 0; row < other.size_.rows; ++row) {
        for (int column = 0; column < other.size_.columns; ++column) {
            put({at.column + column, at.row + row}, other.cell({column, row}));
        }
    }
}

std::string text_picture(const Canvas& canvas) {
    std::string picture;
    for (int row = 0; row < canvas.size().rows; ++row) {
        std::u32string line;
        for (int column = 0; column < canvas.size().columns; ++column) {
            const Cell& cell = canvas.cell({column, row});
            if (cell.tail) continue;
            line.push_back(cell.character);
            for (const char32_t mark : cell.marks) {
                if (mark != 0) line.push_back(mark);
            }
        }
        line.erase(line.find_last_not_of(U' ') + 1);
        picture += to_utf8(line) + "\n";
    }
    return picture;
}

// ---- Text ---------------------------------------------------------------------------------------------

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
