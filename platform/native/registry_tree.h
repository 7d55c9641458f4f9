// The keys and values of a registry in memory.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/native/registry_text.h"

namespace vex::platform::native {

/// Whether a name stands before another. Case does not count.
bool name_precedes(std::u16string_view left, std::u16string_view right) noexcept;

/// What has a `name`, in the order of the names. Only adding and removing take time in proportion to the size, and
/// adding at the end does not.
template <class Element>
class NameList {
public:
    std::size_t size() const noexcept { return elements_.size(); }
    Element& operator[](std::size_t index) const { return *elements_[index]; }
    auto begin() noexcept { return elements_.begin(); }
    auto begin() const noexcept { return elements_.begin(); }
    auto end() noexcept { return elements_.end(); }
    auto end() const noexcept { return elements_.end(); }

    /// Null where there is none of that name.
    std::shared_ptr<Element> find(std::u16string_view name) const {
        const auto place = place_of(name);
        return has(place, name) ? *place : nullptr;
    }
    /// The one of that name, which keeps the case in which it came first; made where there is none.
    Element& at(std::u16string_view name) {
        auto place = place_of(name);
        if (!has(place, name)) {
            place = elements_.insert(place, std::make_shared<Element>());
            (*place)->name = name;
        }
        return **place;
    }
    bool remove(std::u16string_view name) {
        const auto place = place_of(name);
        const bool there = has(place, name);
        if (there) elements_.erase(place);
        return there;
    }
    void swap(NameList& other) noexcept { elements_.swap(other.elements_); }

private:
    using Elements = std::vector<std::shared_ptr<Element>>;

    typename Elements::const_iterator place_of(std::u16string_view name) const {
        if (elements_.empty() || name_precedes(elements_.back()->name, name)) return elements_.end();
        return std::partition_point(elements_.begin(), elements_.end(),
                                    [name](const auto& each) { return name_precedes(each->name, name); });
    }
    bool has(typename Elements::const_iterator place, std::u16string_view name) const {
        return place != elements_.end() && !name_precedes(name, (*place)->name);
    }

    Elements elements_;
};

/// A key: its values and the keys below it. Open handles share it, so that it outlives its deletion.
struct RegistryNode : std::enable_shared_from_this<RegistryNode> {
    std::u16string name;
    /// Null for a deleted key, and for what is above the roots.
    RegistryNode* parent = nullptr;
    NameList<RegistryValue> values;
    NameList<RegistryNode> keys;

    bool is_deleted() const noexcept { return parent == nullptr; }
    /// How many keys lie between it and what is above the roots.
    std::size_t depth() const noexcept { return parent->parent == nullptr ? 0 : parent->depth() + 1; }

    /// The key at a path below this one, or null. An empty path is the key itself.
    RegistryNode* find(std::u16string_view path);
    /// The same, and made where it is missing.
    RegistryNode& create(std::u16string_view path);
    /// Deletes it and everything below it.
    void remove();
    void clear();
    /// Becomes what a key that was read anew is. Below it, each key that is there in both stays the same object.
    void take(RegistryNode& fresh);

private:
    void mark_deleted() noexcept;
};

/// All keys below the predefined roots. HKEY_CLASSES_ROOT is another name for a key that always exists, as the
/// roots do.
class RegistryTree {
public:
    RegistryTree();

    /// Null for what is no root's name.
    RegistryNode* root(std::u16string_view name) const;
    /// The key at a path that begins with a root's name, or null.
    RegistryNode* find(std::u16string_view path) const;
    /// Whether a key cannot be deleted.
    bool is_permanent(const RegistryNode& key) const { return key.parent == top_.get() || &key == classes_; }

    void apply(std::vector<RegistrySection> sections);
    /// Becomes what a tree that was read anew is. Keys that are there in both stay, and open handles with them.
    void take(RegistryTree& fresh);

    /// All of it as a registry text.
    std::string text() const;

private:
    void append(std::string& text, const RegistryNode& key, const std::u16string& path) const;

    std::shared_ptr<RegistryNode> top_ = std::make_shared<RegistryNode>();
    RegistryNode* classes_;
};

}  // namespace vex::platform::native
