// A list view on the character grid.
#include "platform/native/terminal/list_pane.h"

#include <algorithm>
#include <cmath>

#include "platform/native/terminal/colors.h"
#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {
namespace {

constexpr char32_t kFocusedMark = U'▸';
constexpr char32_t kIdleMark = U'›';
constexpr forms::Color kIdleSelection = forms::rgb(208, 208, 208);

char32_t icon_character(const forms::Image& image, const IconCharacters& icons) {
    const auto found = icons.find(image.icon);
    if (found != icons.end()) return found->second;
    return image.key.empty() ? U' ' : to_utf32(image.key).front();
}

}  // namespace

ListPane::ListPane(const forms::ListView& list, const Area& cells, const Scale& scale, ListScroll& scroll)
    : list_(list), cells_(cells), scroll_(scroll), page_(static_cast<std::size_t>(std::max(1, cells.height() - 1))) {
    int total = 0;
    for (const forms::ListColumn& column : list.columns) {
        const auto width = static_cast<int>(std::lround(static_cast<double>(column.width) / scale.column));
        widths_.push_back(std::max(3, width));
        total += widths_.back();
    }
    if (!widths_.empty()) {
        // The last column takes the room that is left, and more where the texts in sight are longer.
        const int width = std::max(widths_.back(), widths_.back() + view_width() - total);
        widths_.back() = std::max(width, widest_last_cell());
    }
    limit();
}

void ListPane::limit() noexcept {
    const std::size_t count = list_.row_count();
    scroll_.top = std::min(scroll_.top, count > page_ ? count - page_ : 0);
    int total = 0;
    for (const int width : widths_) total += width;
    scroll_.left = std::clamp(scroll_.left, 0, std::max(0, total - view_width()));
}

int ListPane::widest_last_cell() const {
    int widest = 0;
    const std::size_t end = std::min(list_.row_count(), scroll_.top + page_);
    for (std::size_t row = scroll_.top; row < end; ++row) {
        const std::vector<forms::ListCell>& cells = list_.rows()[row].sub_items;
        if (!cells.empty()) widest = std::max(widest, text_width(to_utf32(cells.back().text)));
    }
    return widest;
}

std::optional<std::size_t> ListPane::row_at(int row) const noexcept {
    if (row <= cells_.top || row >= cells_.bottom) return std::nullopt;
    const std::size_t at = scroll_.top + static_cast<std::size_t>(row - cells_.top - 1);
    if (at >= list_.row_count()) return std::nullopt;
    return at;
}

int ListPane::place_of(std::size_t row) const noexcept {
    return cells_.top + 1 +
           static_cast<int>(static_cast<std::ptrdiff_t>(row) - static_cast<std::ptrdiff_t>(scroll_.top));
}

bool ListPane::on_scroll_bar(Point at) const noexcept {
    return overflows() && at.column == cells_.right - 1 && at.row > cells_.top;
}

void ListPane::reveal(std::size_t row) noexcept {
    if (row < scroll_.top) scroll_.top = row;
    if (row >= scroll_.top + page_) scroll_.top = row + 1 - page_;
    limit();
}

void ListPane::scroll_rows(std::ptrdiff_t rows) noexcept {
    const auto top = static_cast<std::ptrdiff_t>(scroll_.top) + rows;
    scroll_.top = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, top));
    limit();
}

void ListPane::scroll_columns(int cells) noexcept {
    scroll_.left += cells;
    limit();
}

void ListPane::paint(Canvas& canvas, bool focused, const IconCharacters& icons) const {
    const ClipScope clip(canvas, cells_);
    canvas.fill(cells_, {look::kText, look::kField});
    paint_header(canvas, focused);
    for (std::size_t line = 0; line < page_ && scroll_.top + line < list_.row_count(); ++line) {
        paint_row(canvas, scroll_.top + line, focused, icons);
    }
    if (overflows()) paint_scroll_bar(canvas);
}

void ListPane::paint_header(Canvas& canvas, bool focused) const {
    const Ink ink{.fore = look::kText, .back = look::kHeader, .underline = true};
    canvas.fill({cells_.left, cells_.top, cells_.right, cells_.top + 1},
                {ink.fore, look::kHeader, false, ink.underline, false});
    int column = cells_.left - scroll_.left;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
        const int before = i == 0 ? gutter() : 0;
        canvas.text({column + before, cells_.top}, shorten(to_utf32(list_.columns[i].header), widths_[i] - before - 1),
                    ink);
        column += widths_[i];
        if (i + 1 < widths_.size()) canvas.text({column - 1, cells_.top}, U"│", ink);
    }
    // Without a selected row the focus has no other place to be seen.
    if (focused && !list_.selected()) {
        canvas.text({cells_.left, cells_.top}, std::u32string(1, kFocusedMark),
                    {.fore = look::kFocusText, .back = look::kFocus, .standout = true});
    }
}

void ListPane::paint_row(Canvas& canvas, std::size_t row, bool focused, const IconCharacters& icons) const {
    const forms::ListRow& data = list_.rows()[row];
    const bool selected = list_.selected() == row;
    const int place = place_of(row);
    Ink ink{.fore = data.fore_color};
    if (selected) {
        ink.back = focused ? look::kFocus : kIdleSelection;
        ink.standout = focused;
        ink.underline = !focused;
        if (focused) ink.fore = look::kFocusText;
        canvas.fill({cells_.left, place, cells_.left + view_width(), place + 1},
                    {ink.fore, *ink.back, false, ink.underline, ink.standout});
    }
    int column = cells_.left - scroll_.left;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
        const int before = i == 0 ? gutter() : 0;
        if (i == 0) {
            if (data.icon && list_.small_icons != nullptr) {
                const char32_t icon = icon_character(list_.small_icons->images()[*data.icon], icons);
                canvas.text({column + 1, place}, std::u32string(1, icon), ink);
            }
            canvas.text({column + before, place}, shorten(to_utf32(data.text), widths_[i] - before - 1), ink);
        } else if (i <= data.sub_items.size()) {
            const forms::ListCell& cell = data.sub_items[i - 1];
            Ink cell_ink = ink;
            if (!selected || !focused) cell_ink.fore = cell.fore_color;
            const bool last = i + 1 == widths_.size();
            const int room = last ? cells_.left + view_width() - column : widths_[i] - 1;
            canvas.text({column, place}, shorten(to_utf32(cell.text), room), cell_ink);
        }
        column += widths_[i];
    }
    if (selected) canvas.text({cells_.left, place}, std::u32string(1, focused ? kFocusedMark : kIdleMark), ink);
}

void ListPane::paint_scroll_bar(Canvas& canvas) const {
    const auto page = static_cast<double>(page_);
    const auto count = static_cast<double>(list_.row_count());
    const int height = std::max(1, static_cast<int>(page * page / count));
    const double travelled = static_cast<double>(scroll_.top) / (count - page);
    const int thumb = static_cast<int>(std::lround(travelled * (page - height)));
    for (int line = 0; line < static_cast<int>(page_); ++line) {
        const bool in_thumb = line >= thumb && line < thumb + height;
        canvas.text({cells_.right - 1, cells_.top + 1 + line}, in_thumb ? U"█" : U"│",
                    {.fore = look::kFaint, .back = look::kHeader});
    }
}

}  // namespace vex::platform::native::terminal
