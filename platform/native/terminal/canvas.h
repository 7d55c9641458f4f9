// A grid of character cells to draw on: what a screen, a window or a picture in text is made of; and text for it:
// code points, their widths in cells, cutting and wrapping.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "forms/controls.h"

namespace vex::platform::native::terminal {

/// A cell; columns and rows count from 0.
struct Point {
    int column = 0;
    int row = 0;

    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    int columns = 0;
    int rows = 0;
};

/// Cells; right and bottom are the first ones outside.
struct Area {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int width() const noexcept { return right - left; }
    int height() const noexcept { return bottom - top; }
    bool contains(Point at) const noexcept {
        return at.column >= left && at.column < right && at.row >= top && at.row < bottom;
    }
    Area meet(const Area& other) const noexcept {
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }
    Area moved(Point by) const noexcept { return {left + by.column, top + by.row, right + by.column, bottom + by.row}; }

    friend bool operator==(const Area&, const Area&) = default;
};

/// The colours of everything, in the order that terminals number them.
enum class Color : std::uint8_t {
    black, red, green, brown, blue, magenta, cyan, light_grey,
    dark_grey, bright_red, bright_green, yellow, bright_blue, bright_magenta, bright_cyan, white,
    /// Of a background: the one that is there.
    as_before
};

/// The one that a form's colour is shown in.
Color color_of(forms::Color color) noexcept;

/// How text looks. `standout` is for screens without colours.
struct Style {
    Color fore = Color::black;
    Color back = Color::as_before;
    bool bold = false;
    bool underline = false;
    bool standout = false;
};

/// What a form does not colour itself.
namespace look {
inline constexpr Style kDesktop{.fore = Color::light_grey, .back = Color::black};
inline constexpr Style kFace{.fore = Color::black, .back = Color::light_grey};
inline constexpr Style kField{.fore = Color::black, .back = Color::white};
inline constexpr Style kTitle{.fore = Color::white, .back = Color::blue, .bold = true, .standout = true};
inline constexpr Style kIdleTitle{.fore = Color::white, .back = Color::dark_grey};
inline constexpr Style kFocus{.fore = Color::white, .back = Color::bright_blue, .bold = true, .standout = true};
inline constexpr Color kFaint = Color::dark_grey;
}  // namespace look

struct Cell {
    char32_t character = U' ';
    /// Combining marks; unused ones are 0, further ones are not kept.
    std::array<char32_t, 2> marks{};
    /// The arms of a line here, so that lines that meet join: 1 up, 2 right, 4 down, 8 left.
    std::uint8_t arms = 0;
    /// The right half of the wide character to the left.
    bool tail = false;
    Style style = {};
};

/// Draws only inside its clip area; places outside are allowed and not drawn.
class Canvas {
public:
    explicit Canvas(Size size, const Style& style = look::kField);

    Size size() const noexcept { return size_; }
    Area area() const noexcept { return {0, 0, size_.columns, size_.rows}; }
    /// `at` must lie inside.
    const Cell& cell(Point at) const noexcept { return cells_[index(at)]; }

    /// Limits drawing to `area`.
    void set_clip(const Area& area) noexcept { clip_ = area.meet(this->area()); }
    void fill(const Area& area, const Style& style, char32_t character = U' ') noexcept;
    /// Draws one line of text and answers the column after it. Control characters are drawn as U+FFFD and
    /// format characters not at all, so that no text can steer the terminal.
    int text(Point at, std::u32string_view text, const Style& style) noexcept;
    /// A straight line between two cells of one row or column, both included; joins with lines it meets.
    void line(Point from, Point to, Color color) noexcept;
    /// Copies all of `other` to `at`.
    void paste(const Canvas& other, Point at) noexcept;

private:
    std::size_t index(Point at) const noexcept {
        return static_cast<std::size_t>(at.row) * static_cast<std::size_t>(size_.columns) +
               static_cast<std::size_t>(at.column);
    }
    void put(Point at, Cell cell) noexcept;

    Size size_;
    Area clip_;
    std::vector<Cell> cells_;
};

/// The characters in UTF-8, a line for each row, without blanks at line ends.
std::string text_picture(const Canvas& canvas);

// ---- Text ---------------------------------------------------------------------------------------------

/// Unpaired surrogates become U+FFFD.
std::u32string to_utf32(std::u16string_view text);
std::u16string to_utf16(std::u32string_view text);
std::string to_utf8(std::u32string_view text);

/// The cells that a character takes: 0 (combining), 1 or 2. Control characters take one, as the U+FFFD
/// that is drawn for them.
int character_width(char32_t character) noexcept;
int text_width(std::u32string_view text) noexcept;

/// The longest beginning of `text` that fits into `width` cells.
std::u32string_view beginning(std::u32string_view text, int width) noexcept;
/// `text` where it fits into `width` cells; otherwise an ellipsis stands for what is left out of it.
enum class Cut { end, middle, start };
std::u32string shorten(std::u32string_view text, int width, Cut cut = Cut::end);
/// The first character that is seen in `width` cells where the cursor stands before character `at`, in a cell
/// of its own after the text.
std::size_t first_seen(std::u32string_view text, std::size_t at, int width) noexcept;
/// Lines of at most `width` cells, broken at blanks and line ends, in words only where one is too long.
/// At least one line.
std::vector<std::u32string> wrap(std::u32string_view text, int width);

/// The caption of a control with a mnemonic: "&" marks it, "&&" stands for "&".
struct Caption {
    std::u32string text;
    /// Position of the mnemonic in `text`.
    std::optional<std::size_t> mnemonic;
};
Caption parse_caption(std::u16string_view caption);

}  // namespace vex::platform::native::terminal
