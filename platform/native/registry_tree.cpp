// The keys and values of a registry in memory.
#include "platform/native/registry_tree.h"

#include <algorithm>
#include <utility>

#include "platform/registry.h"

namespace vex::platform::native {
namespace {

struct Root {
    std::int32_t handle;
    const char16_t* name;
};

constexpr Root kClasses = {kHkeyClassesRoot, u"HKEY_CLASSES_ROOT"};
constexpr char16_t kClassesPath[] = u"Software\\Classes";
constexpr std::size_t kClassesDepth = 2;
constexpr Root kRoots[] = {
    {kHkeyLocalMachine, u"HKEY_LOCAL_MACHINE"},
    {kHkeyCurrentUser, u"HKEY_CURRENT_USER"},
    {kHkeyUsers, u"HKEY_USERS"},
    {static_cast<std::int32_t>(0x80000005U), u"HKEY_CURRENT_CONFIG"},
};

/// About what a value takes in the text: hexadecimal bytes take three characters each.
std::size_t text_size(const RegistryValue& value) {
    const std::size_t data_size = value.type == kRegSz ? value.data.size() / 2 : value.data.size() * 3;
    return value.name.size() + data_size + 4;
}

RegistryNode& create(RegistryNode& from, std::u16string_view path) {
    const std::u16string_view name = take_name(path);
    if (name.empty()) return from;
    RegistryNode* node = from.subkeys.find(name);
    if (node == nullptr) {
        auto created = std::make_shared<RegistryNode>();
        created->name = name;
        created->parent = &from;
        node = created.get();
        from.subkeys.add(created);
    }
    return create(*node, path);
}

/// Marks a key and all below it as deleted. Returns about what they took in the text.
std::size_t detach(RegistryNode& node) {
    std::size_t size = node.name.size();
    for (const auto& value : node.values) size += text_size(*value);
    for (const auto& subkey : node.subkeys) size += detach(*subkey);
    node.parent = nullptr;
    node.deleted = true;
    return size;
}

}  // namespace

std::u16string_view take_name(std::u16string_view& path) {
    const auto skip_separators = [&path] { path.remove_prefix(std::min(path.size(), path.find_first_not_of(u'\\'))); };
    skip_separators();
    const std::u16string_view name = path.substr(0, path.find(u'\\'));
    path.remove_prefix(name.size());
    skip_separators();
    return name;
}

std::optional<std::size_t> depth_of_registry_root(std::u16string_view name) {
    if (equal_ignoring_case(name, kClasses.name)) return kClassesDepth;
    const bool is_root = std::any_of(std::begin(kRoots), std::end(kRoots),
                                     [name](const Root& root) { return equal_ignoring_case(name, root.name); });
    return is_root ? std::optional<std::size_t>(0) : std::nullopt;
}

std::u16string RegistryNode::path() const { return parent == nullptr ? name : parent->path() + u'\\' + name; }

RegistryNode* RegistryNode::find(std::u16string_view path) {
    RegistryNode* node = this;
    for (auto next = take_name(path); node != nullptr && !next.empty(); next = take_name(path)) {
        node = node->subkeys.find(next);
    }
    return node;
}

RegistryTree::RegistryTree() {
    for (const Root& root : kRoots) {
        auto node = std::make_shared<RegistryNode>();
        node->name = root.name;
        roots_.add(node);
    }
    classes_ = &create(*root(kHkeyLocalMachine), kClassesPath);
}

RegistryTree::~RegistryTree() {
    // Open handles may outlive the tree.
    for (const auto& root : roots_) detach(*root);
}

RegistryNode* RegistryTree::root(std::int32_t handle) const {
    if (handle == kClasses.handle) return classes_;
    const auto* found = std::find_if(std::begin(kRoots), std::end(kRoots),
                                     [handle](const Root& root) { return root.handle == handle; });
    return found == std::end(kRoots) ? nullptr : roots_.find(found->name);
}

RegistryNode* RegistryTree::find_root(std::u16string_view name) const {
    return equal_ignoring_case(name, kClasses.name) ? classes_ : roots_.find(name);
}

RegistryNode* RegistryTree::find(std::u16string_view path) const {
    RegistryNode* root = find_root(take_name(path));
    return root == nullptr ? nullptr : root->find(path);
}

void RegistryTree::key(std::u16string_view path) {
    RegistryNode* root = find_root(take_name(path));
    current_ = root == nullptr ? nullptr : &create(*root, path);
}

void RegistryTree::key_deleted(std::u16string_view path) {
    current_ = nullptr;
    RegistryNode* node = find(path);
    if (node == nullptr) return;
    std::shared_ptr<RegistryNode> removed;
    if (node->parent == nullptr) {
        // A root stays, and loses what it has.
        removed = std::make_shared<RegistryNode>();
        std::swap(removed->subkeys, node->subkeys);
        std::swap(removed->values, node->values);
    } else {
        removed = node->shared_from_this();
        node->parent->subkeys.remove(*node);
    }
    superseded_size_ += detach(*removed);
    if (classes_->deleted) classes_ = &create(*root(kHkeyLocalMachine), kClassesPath);
}

void RegistryTree::value(RegistryValue value) {
    if (current_ == nullptr) return;
    auto told = std::make_unique<RegistryValue>(std::move(value));
    if (RegistryValue* known = current_->values.add(told)) {
        superseded_size_ += text_size(*known);
        // The name keeps the case in which it came first.
        known->type = told->type;
        known->data = std::move(told->data);
    }
}

void RegistryTree::value_deleted(std::u16string_view name) {
    RegistryValue* value = current_ == nullptr ? nullptr : current_->values.find(name);
    if (value == nullptr) return;
    superseded_size_ += text_size(*value);
    current_->values.remove(*value);
}

void RegistryTree::tell_node(const RegistryNode& node, const std::u16string& path, RegistryChanges& changes) const {
    // A key above others is told of by them, and one that always exists by nobody.
    const bool untold = node.subkeys.size() == 0 && !is_permanent(node);
    if (node.values.size() > 0 || untold) changes.key(path);
    for (const auto& value : node.values) changes.value(*value);
    for (const auto& subkey : node.subkeys) tell_node(*subkey, path + u'\\' + subkey->name, changes);
}

void RegistryTree::tell(RegistryChanges& changes) const {
    for (const auto& root : roots_) tell_node(*root, root->name, changes);
}

}  // namespace vex::platform::native
