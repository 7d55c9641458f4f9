// Places on the character grid.
#pragma once

#include <algorithm>

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

    friend bool operator==(const Size&, const Size&) = default;
};

/// Cells; right and bottom are the first ones outside.
struct Area {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int width() const noexcept { return right - left; }
    int height() const noexcept { return bottom - top; }
    bool empty() const noexcept { return right <= left || bottom <= top; }
    bool contains(Point at) const noexcept {
        return at.column >= left && at.column < right && at.row >= top && at.row < bottom;
    }
    Area meet(const Area& other) const noexcept {
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }

    friend bool operator==(const Area&, const Area&) = default;
};

}  // namespace vex::platform::native::terminal
