// A grid of character cells to draw on: what a screen, a window or an approved picture is made of.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "forms/controls.h"
#include "platform/native/terminal/geometry.h"

namespace vex::platform::native::terminal {

/// How a cell looks. Where fore and back colour are one, the cell is meant to be a plain block of it.
/// `standout` is for screens without colours, which show neither.
struct Style {
    forms::Color fore = forms::kBlack;
    forms::Color back = forms::kWhite;
    bool bold = false;
    bool underline = false;
    bool standout = false;

    friend bool operator==(const Style&, const Style&) = default;
};

/// What to draw text with. Without `back` it stands on what is there already.
struct Ink {
    forms::Color fore = forms::kBlack;
    std::optional<forms::Color> back = std::nullopt;
    bool bold = false;
    bool underline = false;
    bool standout = false;
};

struct Cell {
    char32_t character = U' ';
    /// Combining marks; unused ones are 0, further ones are not kept.
    std::array<char32_t, 2> marks{};
    /// The arms of a line here, so that lines that meet join: 1 up, 2 right, 4 down, 8 left.
    std::uint8_t arms = 0;
    /// The right half of the wide character to the left.
    bool tail = false;
    Style style;

    friend bool operator==(const Cell&, const Cell&) = default;
};

/// Draws only inside its clip area; places outside are allowed and not drawn.
class Canvas {
public:
    explicit Canvas(Size size, const Style& style = {});

    Size size() const noexcept { return size_; }
    Area area() const noexcept { return {0, 0, size_.columns, size_.rows}; }
    /// `at` must lie inside.
    const Cell& cell(Point at) const noexcept { return cells_[index(at)]; }

    /// Drawing is limited to this area.
    const Area& clip() const noexcept { return clip_; }
    void set_clip(const Area& area) noexcept { clip_ = area.meet(this->area()); }

    /// Empties cells.
    void fill(const Area& area, const Style& style) noexcept;
    /// Fills cells with a colour, and with `character` for who sees no colours.
    void block(const Area& area, forms::Color color, char32_t character) noexcept;
    /// Draws one line of text and answers the column after it. Control characters are drawn as U+FFFD and
    /// format characters not at all, so that no text can steer the terminal.
    int text(Point at, std::u32string_view text, const Ink& ink) noexcept;
    /// A straight line between two cells of one row or column, both included; joins with lines it meets.
    void line(Point from, Point to, forms::Color color) noexcept;
    /// The outline of `area`.
    void frame(const Area& area, forms::Color color) noexcept;
    /// Copies all of `other` to `at`.
    void paste(const Canvas& other, Point at) noexcept;

private:
    std::size_t index(Point at) const noexcept {
        return static_cast<std::size_t>(at.row) * static_cast<std::size_t>(size_.columns) +
               static_cast<std::size_t>(at.column);
    }
    void put(Point at, const Cell& cell) noexcept;
    void arm(Point at, std::uint8_t arms, forms::Color color) noexcept;

    Size size_;
    Area clip_;
    std::vector<Cell> cells_;
};

/// Limits the drawing on a canvas further for a scope.
class ClipScope {
public:
    ClipScope(Canvas& canvas, const Area& area) noexcept : canvas_(canvas), before_(canvas.clip()) {
        canvas_.set_clip(before_.meet(area));
    }
    ClipScope(const ClipScope&) = delete;
    ClipScope& operator=(const ClipScope&) = delete;
    ~ClipScope() { canvas_.set_clip(before_); }

private:
    Canvas& canvas_;
    Area before_;
};

}  // namespace vex::platform::native::terminal
