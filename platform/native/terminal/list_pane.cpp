// A list view on the character grid.
#include "platform/native/terminal/list_pane.h"

#include <cmath>
#include <numeric>
#include <utility>

namespace vex::platform::native::terminal {
namespace {

constexpr std::u32string_view kFocusedMark = U"▸";
constexpr std::u32string_view kIdleMark = U"›";
constexpr int kNarrowest = 3;

const std::u16string& text_in(const forms::ListRow& row, std::size_t column) {
    static const std::u16string none;
    if (column == 0) return row.text;
    return column <= row.sub_items.size() ? row.sub_items[column - 1].text : none;
}

/// The headers, as a row.
forms::ListRow header_of(const forms::ListView& list) {
    forms::ListRow header;
    header.text = list.columns.front().header;
    for (std::size_t i = 1; i < list.columns.size(); ++i) header.sub_items.push_back({list.columns[i].header});
    return header;
}

char32_t icon_character(const forms::Image& image, const IconCharacters& icons) {
    const auto found = icons.find(image.icon);
    if (found != icons.end()) return found->second;
    return image.key.empty() ? U' ' : to_utf32(image.key).front();
}

}  // namespace

ListPane::ListPane(const forms::ListView& list, const Area& cells, const Scale& scale, ListScroll& scroll)
    : list_(list), cells_(cells), scroll_(scroll) {
    if (const auto wanted = std::exchange(scroll.wanted, std::nullopt)) {
        const int row = static_cast<int>(*wanted);
        scroll.top = std::clamp(scroll.top, row + 1 - page(), row);
    }
    limit();
    share_width(scale);
    limit();
}

/// The first column, which names the row, has what the texts in sight need, up to half of the list; the others have
/// it up to their design. What is left goes to texts and headers that need more, then as designed.
void ListPane::share_width(const Scale& scale) {
    const std::size_t columns = list_.columns.size();
    if (columns == 0) return;
    std::vector<int> needed(columns, kNarrowest);
    const auto room_for = [this](const forms::ListRow& row, std::size_t i) {
        return text_width(to_utf32(text_in(row, i))) + 1 + (i == 0 ? gutter() : 0);
    };
    const int end = std::min(count(), scroll_.top + page());
    for (int row = scroll_.top; row < end; ++row) {
        const forms::ListRow& texts = list_.rows()[static_cast<std::size_t>(row)];
        for (std::size_t i = 0; i < columns; ++i) needed[i] = std::max(needed[i], room_for(texts, i));
    }
    std::vector<int> headed;
    std::vector<int> designed;
    for (std::size_t i = 0; i < columns; ++i) {
        headed.push_back(std::max(needed[i], room_for(header_of(list_), i)));
        designed.push_back(std::max(kNarrowest, list_.columns[i].width / scale.column));
        widths_.push_back(std::min(needed[i], i == 0 ? std::max(designed[i], view_width() / 2) : designed[i]));
    }
    for (const std::vector<int>* wanted : {&needed, &headed, &designed}) {
        for (std::size_t i = 0; i < columns; ++i) {
            const int left = std::max(0, view_width() - total_width());
            widths_[i] += std::clamp((*wanted)[i] - widths_[i], 0, left);
        }
    }
    // Scrolling to the right shows all of the last column.
    widths_.back() = std::max(widths_.back() + view_width() - total_width(), needed.back() - 1);
}

int ListPane::total_width() const noexcept { return std::accumulate(widths_.begin(), widths_.end(), 0); }

void ListPane::limit() noexcept {
    scroll_.top = std::clamp(scroll_.top, 0, std::max(0, count() - page()));
    if (!widths_.empty()) scroll_.left = std::clamp(scroll_.left, 0, std::max(0, total_width() - view_width()));
}

std::optional<std::size_t> ListPane::row_at(Point at) const noexcept {
    if (at.row <= cells_.top || !cells_.contains(at) || on_scroll_bar(at)) return std::nullopt;
    const int row = scroll_.top + at.row - cells_.top - 1;
    return row < count() ? std::optional(static_cast<std::size_t>(row)) : std::nullopt;
}

void ListPane::scroll_to(int row) noexcept {
    scroll_.top = static_cast<int>(list_.row_count() * static_cast<std::size_t>(row - cells_.top - 1) /
                                   static_cast<std::size_t>(std::max(1, page() - 1)));
    limit();
}

void ListPane::scroll(int rows, int columns) noexcept {
    scroll_.top += rows;
    scroll_.left += columns;
    limit();
}

void ListPane::paint(Canvas& canvas, bool focused, const IconCharacters& icons) const {
    canvas.fill(cells_, look::kField);
    Style style = look::kFace;
    style.underline = true;
    canvas.fill({cells_.left, cells_.top, cells_.right, cells_.top + 1}, style);
    if (!widths_.empty()) paint_texts(canvas, cells_.top, header_of(list_), style, false);
    int column = cells_.left - scroll_.left - 1;
    for (std::size_t i = 0; i + 1 < widths_.size(); ++i) canvas.text({column += widths_[i], cells_.top}, U"│", style);
    // Without a selected row the focus has no other place to be seen.
    if (focused && !list_.selected()) canvas.text({cells_.left, cells_.top}, kFocusedMark, look::kFocus);
    for (int row = scroll_.top; row < std::min(count(), scroll_.top + page()); ++row) {
        paint_row(canvas, static_cast<std::size_t>(row), focused, icons);
    }
    if (overflows()) paint_scroll_bar(canvas);
}

void ListPane::paint_texts(Canvas& canvas, int place, const forms::ListRow& row, Style style, bool own_colors) const {
    int column = cells_.left - scroll_.left;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
        const int start = column + (i == 0 ? gutter() : 0);
        column += widths_[i];
        const int end = i + 1 == widths_.size() ? cells_.left + view_width() : column - 1;
        // Names that begin alike differ at their ends.
        const bool name = i == 0 && place > cells_.top;
        const Cut cut = name ? Cut::middle : Cut::end;
        const bool item = i > 0 && i <= row.sub_items.size();
        if (own_colors) style.fore = color_of(item ? row.sub_items[i - 1].fore_color : row.fore_color);
        canvas.text({start, place}, shorten(to_utf32(text_in(row, i)), end - start, cut), style);
    }
}

void ListPane::paint_row(Canvas& canvas, std::size_t row, bool focused, const IconCharacters& icons) const {
    const forms::ListRow& data = list_.rows()[row];
    const bool selected = list_.selected() == row;
    const int place = place_of(row);
    Style style = selected && focused ? look::kFocus : look::kField;
    style.bold = false;
    style.underline = selected && !focused;
    canvas.fill({cells_.left, place, cells_.left + view_width(), place + 1}, style);
    const bool own_colors = !selected || !focused;
    paint_texts(canvas, place, data, style, own_colors);
    if (selected) canvas.text({cells_.left, place}, focused ? kFocusedMark : kIdleMark, style);
    if (own_colors) style.fore = color_of(data.fore_color);
    if (data.icon && list_.small_icons != nullptr) {
        const char32_t icon = icon_character(list_.small_icons->images()[*data.icon], icons);
        canvas.text({cells_.left - scroll_.left + 1, place}, std::u32string(1, icon), style);
    }
}

void ListPane::paint_scroll_bar(Canvas& canvas) const {
    const int height = std::max(1, page() * page() / count());
    const double travelled = static_cast<double>(scroll_.top) / (count() - page());
    const int thumb = static_cast<int>(std::lround(travelled * (page() - height)));
    for (int line = 0; line < page(); ++line) {
        canvas.text({cells_.right - 1, cells_.top + 1 + line}, line >= thumb && line < thumb + height ? U"█" : U"│",
                    {.fore = look::kFaint, .back = look::kFace.back});
    }
}

}  // namespace vex::platform::native::terminal
