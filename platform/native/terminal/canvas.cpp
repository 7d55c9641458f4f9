// A grid of character cells to draw on.
#include "platform/native/terminal/canvas.h"

#include "platform/native/terminal/text.h"

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

}  // namespace vex::platform::native::terminal
