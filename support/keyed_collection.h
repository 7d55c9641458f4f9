// A container that keeps the order of insertion and finds its items by unique keys without regard to case.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/runtime_error.h"
#include "core/unicode.h"

namespace vex {

template <class Item>
class KeyedCollection {
public:
    /// Raises kDuplicateKey when the key is taken.
    void add(Item item, std::u16string_view key) {
        if (!positions_.emplace(to_upper(key), items_.size()).second) throw RuntimeError(kDuplicateKey);
        items_.push_back(std::move(item));
    }

    /// The item of a key, or null.
    const Item* find(std::u16string_view key) const {
        const auto position = positions_.find(to_upper(key));
        return position == positions_.end() ? nullptr : &items_[position->second];
    }

    std::size_t size() const noexcept { return items_.size(); }
    bool empty() const noexcept { return items_.empty(); }
    const Item& operator[](std::size_t index) const { return items_[index]; }
    auto begin() const noexcept { return items_.begin(); }
    auto end() const noexcept { return items_.end(); }

private:
    std::vector<Item> items_;
    std::unordered_map<std::u16string, std::size_t> positions_;
};

}  // namespace vex
