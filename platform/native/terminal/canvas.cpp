// A grid of character cells to draw on.
#include "platform/native/terminal/canvas.h"

#include <algorithm>

#include "platform/native/terminal/colors.h"
#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {
namespace {

constexpr std::uint8_t kUp = 1;
constexpr std::uint8_t kRight = 2;
constexpr std::uint8_t kDown = 4;
constexpr std::uint8_t kLeft = 8;

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

Canvas::Canvas(Size size, const Style& style)
    : size_{std::max(size.columns, 0), std::max(size.rows, 0)}, clip_{0, 0, size_.columns, size_.rows} {
    Cell blank;
    blank.style = style;
    cells_.assign(static_cast<std::size_t>(size_.columns) * static_cast<std::size_t>(size_.rows), blank);
}

void Canvas::put(Point at, const Cell& cell) noexcept {
    if (!clip_.contains(at)) return;
    Cell& target = cells_[index(at)];
    // No half of a wide character stays behind alone.
    if (target.tail && !cell.tail && at.column > 0) cells_[index({at.column - 1, at.row})].character = U' ';
    if (at.column + 1 < size_.columns && !target.tail) {
        Cell& next = cells_[index({at.column + 1, at.row})];
        if (next.tail) {
            next.tail = false;
            next.character = U' ';
        }
    }
    target = cell;
}

void Canvas::fill(const Area& area, const Style& style) noexcept {
    Cell blank;
    blank.style = style;
    const Area target = area.meet(clip_);
    for (int row = target.top; row < target.bottom; ++row) {
        for (int column = target.left; column < target.right; ++column) put({column, row}, blank);
    }
}

void Canvas::block(const Area& area, forms::Color color, char32_t character) noexcept {
    Cell cell;
    cell.character = character;
    cell.style = {color, color};
    const Area target = area.meet(clip_);
    for (int row = target.top; row < target.bottom; ++row) {
        for (int column = target.left; column < target.right; ++column) put({column, row}, cell);
    }
}

int Canvas::text(Point at, std::u32string_view text, const Ink& ink) noexcept {
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
        last = nullptr;
        const Point end{at.column + width - 1, at.row};
        if (clip_.contains(at)) {
            Cell cell;
            // A wide character that the clip would cut is not drawn at all.
            const bool whole = clip_.contains(end);
            cell.character = whole ? character : U' ';
            const forms::Color back = ink.back.value_or(cells_[index(at)].style.back);
            cell.style = {readable_on(ink.fore, back), back, ink.bold, ink.underline, ink.standout};
            put(at, cell);
            if (whole) {
                last = &cells_[index(at)];
                if (width == 2) {
                    cell.character = U' ';
                    cell.tail = true;
                    put(end, cell);
                }
            }
        }
        at.column += width;
    }
    return at.column;
}

void Canvas::arm(Point at, std::uint8_t arms, forms::Color color) noexcept {
    if (!clip_.contains(at)) return;
    Cell cell;
    const Cell& before = cells_[index(at)];
    cell.arms = before.arms | arms;
    cell.character = kLineCharacters[cell.arms];
    cell.style.back = before.style.back;
    cell.style.fore = readable_on(color, cell.style.back);
    put(at, cell);
}

void Canvas::line(Point from, Point to, forms::Color color) noexcept {
    const bool upright = from.column == to.column && from.row != to.row;
    if (upright) {
        for (int row = from.row; row <= to.row; ++row) {
            const bool first = row == from.row;
            const bool last = row == to.row;
            arm({from.column, row}, static_cast<std::uint8_t>((first ? 0 : kUp) | (last ? 0 : kDown)), color);
        }
        return;
    }
    for (int column = from.column; column <= to.column; ++column) {
        // A line of one cell is still a line.
        const bool first = column == from.column && to.column != from.column;
        const bool last = column == to.column && to.column != from.column;
        arm({column, from.row}, static_cast<std::uint8_t>((first ? 0 : kLeft) | (last ? 0 : kRight)), color);
    }
}

void Canvas::frame(const Area& area, forms::Color color) noexcept {
    const int right = area.right - 1;
    const int bottom = area.bottom - 1;
    line({area.left, area.top}, {right, area.top}, color);
    line({area.left, bottom}, {right, bottom}, color);
    line({area.left, area.top}, {area.left, bottom}, color);
    line({right, area.top}, {right, bottom}, color);
}

void Canvas::paste(const Canvas& other, Point at) noexcept {
    const Area target = Area{at.column, at.row, at.column + other.size_.columns, at.row + other.size_.rows}.meet(clip_);
    for (int row = target.top; row < target.bottom; ++row) {
        for (int column = target.left; column < target.right; ++column) {
            put({column, row}, other.cell({column - at.column, row - at.row}));
        }
    }
}

}  // namespace vex::platform::native::terminal
