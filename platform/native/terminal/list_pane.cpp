// A list view on the character grid.
#include "platform/native/terminal/list_pane.h"

#include <numeric>
#include <utility>

#include "platform/native/terminal/text.h"

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

char32_t icon_character(const forms::Image& image, const IconCharacters& icons) {
    const auto found = icons.find(image.icon);
    if (found != icons.end()) return found->second;
    return image.key.empty() ? U' ' : to_utf32(image.key).front();
}

}  // namespace

ListPane::ListPane(const forms::ListView& list, const Area& cells, const Scale& scale, ListScroll& scroll)
    : list_(list), cells_(cells), scroll_(scroll), page_(static_cast<std::size_t>(std::max(1, cells.height() - 1))) {
    if (const auto row = std::exchange(scroll.wanted, std::nullopt)) {
        if (*row < scroll.top) scroll.top = *row;
        if (*row >= scroll.top + page_) scroll.top = *row + 1 - page_;
    }
    limit();
    share_width(scale);
    limit();
}

/// The first column, which names the row, has what the texts in sight need, up to half of the list; the others have
/// it up to their design. What is left goes to texts and headers that need more, then as designed.
void ListPane::share_width(const Scale& scale) {
    const std::size_t count = list_.columns.size();
    if (count == 0) return;
    std::vector<int> needed(count, kNarrowest);
    const std::size_t end = std::min(list_.row_count(), scroll_.top + page_);
    for (std::size_t row = scroll_.top; row < end; ++row) {
        for (std::size_t i = 0; i < count; ++i) {
            const int width = text_width(to_utf32(text_in(list_.rows()[row], i))) + 1 + (i == 0 ? gutter() : 0);
            needed[i] = std::max(needed[i], width);
        }
    }
    std::vector<int> headed = needed;
    std::vector<int> designed;
    for (std::size_t i = 0; i < count; ++i) {
        const int header = text_width(to_utf32(list_.columns[i].header)) + 1 + (i == 0 ? gutter() : 0);
        headed[i] = std::max(needed[i], header);
        designed.push_back(std::max(kNarrowest, list_.columns[i].width / scale.column));
        widths_.push_back(std::min(needed[i], i == 0 ? std::max(designed[i], view_width() / 2) : designed[i]));
    }
    for (const std::vector<int>* wanted : {&needed, &headed, &designed}) {
        for (std::size_t i = 0; i < count; ++i) {
            const int left = std::max(0, view_width() - total_width());
            widths_[i] += std::clamp((*wanted)[i] - widths_[i], 0, left);
        }
    }
    // Scrolling to the right shows all of the last column.
    widths_.back() = std::max(widths_.back() + view_width() - total_width(), needed.back() - 1);
}

int ListPane::total_width() const noexcept { return std::accumulate(widths_.begin(), widths_.end(), 0); }

void ListPane::limit() noexcept {
    const std::size_t count = list_.row_count();
    scroll_.top = std::min(scroll_.top, count > page_ ? count - page_ : 0);
    if (!widths_.empty()) scroll_.left = std::clamp(scroll_.left, 0, std::max(0, total_width() - view_width()));
}

std::optional<std::size_t> ListPane::row_at(Point at) const noexcept {
    if (at.row <= cells_.top || !cells_.contains(at) || on_scroll_bar(at)) return std::nullopt;
    const std::size_t row = scroll_.top + static_cast<std::size_t>(at.row - cells_.top - 1);
    return row < list_.row_count() ? std::optional(row) : std::nullopt;
}

int ListPane::place_of(std::size_t row) const noexcept {
    return cells_.top + 1 + static_cast<int>(row) - static_cast<int>(scroll_.top);
}

void ListPane::scroll_to(int row) noexcept {
    const auto offset = static_cast<std::size_t>(std::max(0, row - cells_.top - 1));
    scroll_.top = list_.row_count() * offset / std::max<std::size_t>(1, page_ - 1);
    limit();
}

void ListPane::scroll(std::ptrdiff_t rows, int columns) noexcept {
    scroll_.top += static_cast<std::size_t>(std::max(rows, -static_cast<std::ptrdiff_t>(scroll_.top)));
    scroll_.left += columns;
    limit();
}

void ListPane::paint(Canvas& canvas, bool focused, const IconCharacters& icons) const {
    canvas.fill(cells_, look::kField);
    Style style = look::kFace;
    style.underline = true;
    canvas.fill({cells_.left, cells_.top, cells_.right, cells_.top + 1}, style);
    paint_texts(
        canvas, cells_.top, [this](std::size_t i) { return list_.columns[i].header; },
        [style](std::size_t) { return style; });
    int column = cells_.left - scroll_.left - 1;
    for (std::size_t i = 0; i + 1 < widths_.size(); ++i) canvas.text({column += widths_[i], cells_.top}, U"│", style);
    // Without a selected row the focus has no other place to be seen.
    if (focused && !list_.selected()) canvas.text({cells_.left, cells_.top}, kFocusedMark, look::kFocus);
    for (std::size_t row = scroll_.top; row < std::min(list_.row_count(), scroll_.top + page_); ++row) {
        paint_row(canvas, row, focused, icons);
    }
    if (overflows()) paint_scroll_bar(canvas);
}

template <class Text, class Look>
void ListPane::paint_texts(Canvas& canvas, int place, Text text, Look look) const {
    int column = cells_.left - scroll_.left;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
        const int start = column + (i == 0 ? gutter() : 0);
        column += widths_[i];
        const int end = i + 1 == widths_.size() ? cells_.left + view_width() : column - 1;
        // Names that begin alike differ at their ends.
        const bool name = i == 0 && place > cells_.top;
        canvas.text({start, place}, shorten(to_utf32(text(i)), end - start, name ? Cut::middle : Cut::end), look(i));
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
    const auto style_of = [&](std::size_t i) {
        Style ink = style;
        const bool own = i > 0 && i <= data.sub_items.size();
        if (!selected || !focused) ink.fore = color_of(own ? data.sub_items[i - 1].fore_color : data.fore_color);
        return ink;
    };
    paint_texts(
        canvas, place, [&](std::size_t i) { return text_in(data, i); }, style_of);
    if (data.icon && list_.small_icons != nullptr) {
        const char32_t icon = icon_character(list_.small_icons->images()[*data.icon], icons);
        canvas.text({cells_.left - scroll_.left + 1, place}, std::u32string(1, icon), style_of(0));
    }
    if (selected) canvas.text({cells_.left, place}, focused ? kFocusedMark : kIdleMark, style);
}

void ListPane::paint_scroll_bar(Canvas& canvas) const {
    const int page = static_cast<int>(page_);
    const auto count = static_cast<double>(list_.row_count());
    const int height = std::max(1, static_cast<int>(page * page / count));
    const double travelled = static_cast<double>(scroll_.top) / (count - page);
    const int thumb = static_cast<int>(travelled * (page - height) + 0.5);
    for (int line = 0; line < page; ++line) {
        canvas.text({cells_.right - 1, cells_.top + 1 + line}, line >= thumb && line < thumb + height ? U"█" : U"│",
                    {.fore = look::kFaint, .back = look::kFace.back});
    }
}

}  // namespace vex::platform::native::terminal
