// The keys and values of a registry in memory.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/unicode.h"
#include "platform/native/registry_changes.h"

namespace vex::platform::native {

/// Elements in the order in which they came, found by name without regard to case in constant time.
/// `Owner` is a smart pointer to something that has a `name`.
template <class Owner>
class NameList {
public:
    using Element = typename Owner::element_type;

    std::size_t size() const noexcept { return order_.size(); }
    const Owner& operator[](std::size_t index) const { return order_[index]; }
    auto begin() const noexcept { return order_.begin(); }
    auto end() const noexcept { return order_.end(); }

    Element* find(std::u16string_view name) const {
        const auto found = names_.find(name);
        return found == names_.end() ? nullptr : *found;
    }
    /// Takes the element over and answers null. When its name is taken, leaves it and answers who has that.
    Element* add(Owner& element) {
        const auto [holder, added] = names_.insert(element.get());
        if (!added) return *holder;
        order_.push_back(std::move(element));
        return nullptr;
    }
    void remove(Element& element) {
        names_.erase(&element);
        std::erase_if(order_, [&element](const Owner& each) { return each.get() == &element; });
    }

private:
    static char16_t folded(char16_t c) noexcept {
        if (c < 0x80) return static_cast<char16_t>(c >= u'a' && c <= u'z' ? c - 0x20 : c);
        return to_upper(c);
    }
    static std::u16string_view name_of(std::u16string_view name) { return name; }
    static std::u16string_view name_of(const Element* element) { return element->name; }
    struct Hash {
        using is_transparent = void;
        // Not noexcept: only then does the library keep the numbers instead of working them out again and again.
        std::size_t operator()(const auto& name) const {
            std::uint64_t hash = 0xCBF29CE484222325U;
            for (const char16_t c : name_of(name)) hash = (hash ^ folded(c)) * 0x100000001B3U;
            return static_cast<std::size_t>(hash ^ (hash >> 32));
        }
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(const auto& left, const auto& right) const noexcept {
            return equal_ignoring_case(name_of(left), name_of(right));
        }
    };

    std::vector<Owner> order_;
    std::unordered_set<Element*, Hash, Equal> names_;
};

/// A key. Open handles share it, so that it outlives its deletion.
struct RegistryNode : std::enable_shared_from_this<RegistryNode> {
    std::u16string name;
    /// Null for a root, and for a key that is deleted.
    RegistryNode* parent = nullptr;
    bool deleted = false;
    NameList<std::shared_ptr<RegistryNode>> subkeys;
    NameList<std::unique_ptr<RegistryValue>> values;

    /// The key at a path below this one, or null. An empty path is the key itself.
    RegistryNode* find(std::u16string_view path);
    /// The names from the root's down, joined by backslashes.
    std::u16string path() const;
};

/// All keys below the predefined roots. HKEY_CLASSES_ROOT is another name for HKEY_LOCAL_MACHINE's
/// Software\Classes, which always exists, as the roots do.
class RegistryTree final : public RegistryChanges {
public:
    RegistryTree();
    RegistryTree(const RegistryTree&) = delete;
    RegistryTree& operator=(const RegistryTree&) = delete;
    ~RegistryTree() override;

    /// The node of a predefined handle, or null.
    RegistryNode* root(std::int32_t handle) const;
    /// The key at a path that begins with a root's name, or null.
    RegistryNode* find(std::u16string_view path) const;
    /// Whether a key cannot be deleted: a root, or the key of the classes.
    bool is_permanent(const RegistryNode& node) const { return node.parent == nullptr || &node == classes_; }

    void key(std::u16string_view path) override;
    void key_deleted(std::u16string_view path) override;
    void value(RegistryValue value) override;
    void value_deleted(std::u16string_view name) override;

    /// Tells everything there is.
    void tell(RegistryChanges& changes) const;
    /// About how much text told of what later text changed or deleted, in bytes.
    std::size_t superseded_size() const noexcept { return superseded_size_; }

private:
    RegistryNode* find_root(std::u16string_view name) const;
    void tell_node(const RegistryNode& node, const std::u16string& path, RegistryChanges& changes) const;

    NameList<std::shared_ptr<RegistryNode>> roots_;
    RegistryNode* classes_ = nullptr;
    /// The key whose values are told; null for none.
    RegistryNode* current_ = nullptr;
    std::size_t superseded_size_ = 0;
};

/// How deep the key lies that a predefined root's name stands for; nothing when it is no root's.
std::optional<std::size_t> depth_of_registry_root(std::u16string_view name);

}  // namespace vex::platform::native
