// A registry: its keys and values in memory, and the file that holds the same.
#pragma once

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/native/descriptor.h"
#include "platform/native/registry_text.h"

namespace vex::platform::native {
/// Whether a name stands before another. Case does not count.
bool name_precedes(std::u16string_view left, std::u16string_view right) noexcept;

/// What has a `name`, in the order of the names. Only adding and removing take time in proportion to the size, and
/// adding at the end does not.
template <class Element>
class NameList : std::vector<std::shared_ptr<Element>> {
    using Elements = std::vector<std::shared_ptr<Element>>;

public:
    using Elements::begin, Elements::end, Elements::size;
    Element& operator[](std::size_t index) const { return *Elements::operator[](index); }

    /// Null where there is none of that name.
    std::shared_ptr<Element> find(std::u16string_view name) const {
        const auto place = place_of(name);
        return has(place, name) ? *place : nullptr;
    }
    /// The one of that name, which keeps the case in which it came first; made where there is none.
    Element& at(std::u16string_view name) {
        auto place = place_of(name);
        if (has(place, name)) return **place;
        place = this->insert(place, std::make_shared<Element>());
        (*place)->name = name;
        return **place;
    }
    bool remove(std::u16string_view name) {
        const auto place = place_of(name);
        const bool there = has(place, name);
        if (there) this->erase(place);
        return there;
    }
    void swap(NameList& other) noexcept { Elements::swap(other); }

private:
    typename Elements::const_iterator place_of(std::u16string_view name) const {
        if (size() == 0 || name_precedes(this->back()->name, name)) return end();
        return std::partition_point(begin(), end(),
                                    [name](const auto& each) { return name_precedes(each->name, name); });
    }
    bool has(typename Elements::const_iterator place, std::u16string_view name) const {
        return place != end() && !name_precedes(name, (*place)->name);
    }
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

/// A store that many processes may use at once. A change is made under the lock on a file beside the store's, to what
/// the file holds by then, and puts a whole new file in the place of the old one. It is there for good once `update`
/// has returned, also when the process is killed right then: a kill leaves the old file or the new one. A power cut is
/// another matter: nothing waits for the disk, and the last changes, or the whole file, may be lost.
///
/// A file that holds anything else than a registry is refused with RegistryDamage and left as it is until someone
/// repairs it. Other failures of the system are raised as std::system_error; a link in place of the file is one.
/// Not for several threads.
class RegistryStore {
public:
    /// `file`: empty for a store in memory only. Nothing is read yet.
    explicit RegistryStore(std::filesystem::path file = {}) : file_(std::move(file)) {}
    RegistryStore(const RegistryStore&) = delete;
    RegistryStore& operator=(const RegistryStore&) = delete;

    /// What was last read or written. Its keys stay the same objects as long as they are there.
    RegistryTree& tree() noexcept { return tree_; }
    /// Reads the file again if it has changed.
    void refresh();
    /// Makes a change that `change` makes to the tree, which nobody else changes meanwhile; it answers whether there
    /// is one. Where the file cannot be written, the tree is read again, so that nothing is changed; only handles of
    /// a key that should have been deleted take it for deleted.
    void update(const std::function<bool()>& change);
    bool is_writable() const;

private:
    /// What tells whether a file is the one that was read: device, inode, size, time of change in seconds and
    /// nanoseconds. All zero: there is none.
    using Stamp = std::tuple<dev_t, ino_t, off_t, time_t, long>;
    static Stamp stamp_of(const struct ::stat& status) noexcept;
    void load();
    void save();

    const std::filesystem::path file_;
    RegistryTree tree_;
    /// Of what the tree holds; nothing when that is not known to be in the file.
    std::optional<Stamp> stamp_;
    /// The file of that stamp, kept open so that no later file gets its inode.
    Descriptor held_;
};

}  // namespace vex::platform::native
