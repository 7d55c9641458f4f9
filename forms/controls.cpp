// Dialog controls as plain data.
#include "forms/controls.h"

#include <algorithm>
#include <utility>

#include "core/runtime_error.h"
#include "forms/form.h"

namespace vex::forms {

void Control::changed(Change change) {
    if (form_ != nullptr) form_->changed(*this, change);
}

void Control::set_caption(std::u16string caption) {
    if (caption == caption_) return;
    caption_ = std::move(caption);
    changed(Change::caption);
}

void Control::set_enabled(bool enabled) {
    if (std::exchange(enabled_, enabled) != enabled) changed(Change::enabled);
}

void Control::set_visible(bool visible) {
    if (std::exchange(visible_, visible) != visible) changed(Change::visible);
}

bool Control::reachable() const noexcept {
    if (!visible_) return false;
    if (parent_ == nullptr) return true;
    if (parent_->kind() == ControlKind::tab_pages && static_cast<const TabPages*>(parent_)->tab() != page_)
        return false;
    return parent_->reachable();
}

void Control::refresh() {
    if (form_ != nullptr && form_->view() != nullptr) form_->view()->refresh(*this);
}

void OptionButton::set_value(bool value) {
    if (std::exchange(value_, value) == value) return;
    changed(Change::value);
    if (!value || form() == nullptr) return;
    for (Control* other : form()->controls()) {
        if (other != this && other->kind() == ControlKind::option_button && other->parent() == parent() &&
            other->page() == page()) {
            static_cast<OptionButton*>(other)->set_value(false);
        }
    }
}

void CheckBox::set_value(int value) {
    if (std::exchange(value_, value) != value) changed(Change::value);
}

void TabPages::set_tab(std::int16_t tab) {
    if (std::exchange(tab_, tab) != tab) changed(Change::tab);
}

void Shape::set_fill_color(Color color) {
    if (std::exchange(fill_color_, color) != color) changed(Change::color);
}

std::optional<std::size_t> ImageList::find(std::u16string_view key) const noexcept {
    const auto found = std::ranges::find(images_, key, &Image::key);
    return found == images_.end() ? std::nullopt : std::optional<std::size_t>(found - images_.begin());
}

void ListView::clear() {
    rows_.clear();
    keys_.clear();
    selected_.reset();
    changed(Change::rows);
}

std::size_t ListView::add_row(std::u16string key, std::u16string text, std::u16string_view icon) {
    ListRow row;
    if (!icon.empty()) row.icon = icon_index(icon);
    if (!key.empty() && !keys_.try_emplace(key, rows_.size()).second) throw RuntimeError(kListKeyNotUnique);
    row.key = std::move(key);
    row.text = std::move(text);
    if (!columns.empty()) row.sub_items.resize(columns.size() - 1);
    rows_.push_back(std::move(row));
    changed_row_ = rows_.size() - 1;
    changed(Change::rows);
    return changed_row_;
}

void ListView::set_sub_item(std::size_t row, std::size_t index, std::u16string text) {
    rows_.at(row).sub_items.at(index).text = std::move(text);
    row_changed(row);
}

void ListView::set_tag(std::size_t row, std::u16string tag) { rows_.at(row).tag = std::move(tag); }

void ListView::set_row_color(std::size_t row, Color color) {
    rows_.at(row).fore_color = color;
    row_changed(row);
}

void ListView::set_cell_color(std::size_t row, std::size_t index, Color color) {
    rows_.at(row).sub_items.at(index).fore_color = color;
    row_changed(row);
}

void ListView::set_icon(std::size_t row, std::u16string_view key) {
    rows_.at(row).icon = icon_index(key);
    row_changed(row);
}

void ListView::select(std::optional<std::size_t> row) {
    if (std::exchange(selected_, row) != row) changed(Change::selection);
}

Twips ListView::row_top(std::size_t row) const {
    return form() != nullptr && form()->view() != nullptr ? form()->view()->row_top(*this, row) : 0;
}

std::size_t ListView::icon_index(std::u16string_view key) const {
    const auto index = small_icons == nullptr ? std::nullopt : small_icons->find(key);
    if (!index) throw RuntimeError(kListElementNotFound);
    return *index;
}

void ListView::row_changed(std::size_t row) {
    changed_row_ = row;
    changed(Change::row);
}

}  // namespace vex::forms
