// A list view on the character grid: where its rows and columns stand, and how it is drawn.
#pragma once

#include <functional>
#include <map>

#include "platform/native/terminal/layout.h"

namespace vex::platform::native::terminal {

/// The character that stands for an icon, by the icon's resource name.
using IconCharacters = std::map<std::string, char32_t, std::less<>>;

/// How far a list view is scrolled.
struct ListScroll {
    int top = 0;
    /// Cells that are scrolled out to the left.
    int left = 0;
    /// A row to be brought into sight when the list is drawn next.
    std::optional<std::size_t> wanted;
};

/// For one use: a pane must not outlive the list, nor a change of its rows.
class ListPane {
public:
    /// Brings `scroll` into the list's range.
    ListPane(const forms::ListView& list, const Area& cells, const Scale& scale, ListScroll& scroll);

    /// The number of rows that can be seen at once.
    int page() const noexcept { return std::max(1, cells_.height() - 1); }
    /// The row shown at a cell; none on the header, on the scroll bar and below the last row.
    std::optional<std::size_t> row_at(Point at) const noexcept;
    /// The row of the grid at which a row of the list is shown; it may lie outside of the pane.
    int place_of(std::size_t row) const noexcept { return cells_.top + 1 + static_cast<int>(row) - scroll_.top; }
    bool on_scroll_bar(Point at) const noexcept { return overflows() && at.column == cells_.right - 1; }
    /// Where a press on the scroll bar leads.
    void scroll_to(int row) noexcept;
    void scroll(int rows, int columns) noexcept;

    void paint(Canvas& canvas, bool focused, const IconCharacters& icons) const;

private:
    void share_width(const Scale& scale);
    void limit() noexcept;
    int count() const noexcept { return static_cast<int>(list_.row_count()); }
    bool overflows() const noexcept { return count() > page(); }
    int view_width() const noexcept { return cells_.width() - (overflows() ? 1 : 0); }
    int total_width() const noexcept;
    /// The cells before the text of the first column: the mark of the selection and the icon.
    int gutter() const noexcept { return list_.small_icons != nullptr ? 3 : 1; }
    void paint_row(Canvas& canvas, std::size_t row, bool focused, const IconCharacters& icons) const;
    /// The texts of a row or of the header, each in its column; in `style`, or its own colours over it.
    void paint_texts(Canvas& canvas, int place, const forms::ListRow& row, Style style, bool own_colors) const;
    void paint_scroll_bar(Canvas& canvas) const;

    const forms::ListView& list_;
    Area cells_;
    ListScroll& scroll_;
    /// Widths in cells, with the blank between columns.
    std::vector<int> widths_;
};

}  // namespace vex::platform::native::terminal
