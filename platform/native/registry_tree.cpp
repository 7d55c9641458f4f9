// The keys and values of a registry in memory.
#include "platform/native/registry_tree.h"

#include <algorithm>
#include <utility>

#include "core/unicode.h"

namespace vex::platform::native {
namespace {

/// What a new file begins with, behind the first line.
constexpr std::string_view kPreamble =
    "; The registry of a simulated computer. It may be edited at any time; comments go with the next change.\n";

}  // namespace

bool name_precedes(std::u16string_view left, std::u16string_view right) noexcept {
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                        [](char16_t a, char16_t b) { return to_upper(a) < to_upper(b); });
}

RegistryNode* RegistryNode::find(std::u16string_view path) {
    RegistryNode* node = this;
    for (auto next = take_name(path); node != nullptr && !next.empty(); next = take_name(path)) {
        node = node->keys.find(next).get();
    }
    return node;
}

RegistryNode& RegistryNode::create(std::u16string_view path) {
    const std::u16string_view next = take_name(path);
    if (next.empty()) return *this;
    RegistryNode& key = keys.at(next);
    key.parent = this;
    return key.create(path);
}

void RegistryNode::remove() {
    NameList<RegistryNode>& siblings = parent->keys;
    const auto kept = shared_from_this();
    mark_deleted();
    siblings.remove(name);
}

void RegistryNode::clear() {
    RegistryNode empty;
    take(empty);
}

void RegistryNode::take(RegistryNode& fresh) {
    values.swap(fresh.values);
    for (auto& key : fresh.keys) {
        if (auto known = keys.find(key->name)) {
            known->take(*key);
            known->name = key->name;
            key = std::move(known);
        }
        key->parent = this;
    }
    keys.swap(fresh.keys);
    for (const auto& old : fresh.keys) {
        if (keys.find(old->name) != old) old->mark_deleted();
    }
}

void RegistryNode::mark_deleted() noexcept {
    parent = nullptr;
    for (const auto& key : keys) key->mark_deleted();
}

RegistryTree::RegistryTree() : classes_(&top_->create(kClassesPath)) {
    for (const RegistryRoot& root : kRegistryRoots) {
        if (root.handle != kHkeyClassesRoot) top_->create(root.name);
    }
}

RegistryNode* RegistryTree::root(std::u16string_view name) const {
    return equal_ignoring_case(name, u"HKEY_CLASSES_ROOT") ? classes_ : top_->keys.find(name).get();
}

RegistryNode* RegistryTree::find(std::u16string_view path) const {
    RegistryNode* from = root(take_name(path));
    return from == nullptr ? nullptr : from->find(path);
}

void RegistryTree::apply(std::vector<RegistrySection> sections) {
    for (RegistrySection& section : sections) {
        std::u16string_view path = section.path;
        RegistryNode& from = *root(take_name(path));
        if (section.deleted) {
            RegistryNode* key = from.find(path);
            if (key != nullptr) is_permanent(*key) ? key->clear() : key->remove();
            classes_ = &top_->create(kClassesPath);
            continue;
        }
        RegistryNode& key = from.create(path);
        for (auto& [value, deleted] : section.entries) {
            if (deleted) {
                key.values.remove(value.name);
            } else {
                RegistryValue& kept = key.values.at(value.name);
                kept.type = value.type;
                kept.data = std::move(value.data);
            }
        }
    }
}

void RegistryTree::take(RegistryTree& fresh) { top_->take(*fresh.top_); }

std::string RegistryTree::text() const {
    std::string text(kRegistryHeader);
    text += kPreamble;
    for (const auto& root : top_->keys) append(text, *root, root->name);
    return text;
}

void RegistryTree::append(std::string& text, const RegistryNode& key, const std::u16string& path) const {
    // A key above others is told of by them, and one that always exists by nobody.
    const bool untold = key.keys.size() == 0 && !is_permanent(key);
    if (key.values.size() > 0 || untold) append_key(text, path);
    for (const auto& value : key.values) append_value(text, *value);
    for (const auto& below : key.keys) append(text, *below, path + u'\\' + below->name);
}

}  // namespace vex::platform::native
