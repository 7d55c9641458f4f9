// A registry in memory and in its file, kept the same.
#include "platform/native/registry_store.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "core/unicode.h"

namespace vex::platform::native {
namespace {

/// What a new file begins with, behind the first line.
constexpr std::string_view kPreamble =
    "; The registry of a simulated computer. It may be edited at any time; comments go with the next change.\n";

constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;

[[noreturn]] void fail(const std::filesystem::path& path) {
    throw std::system_error(errno, std::generic_category(), path.native());
}

bool is_absent(int reason) { return reason == ENOENT || reason == ENOTDIR; }

/// Keeps other writers out until it is closed. The lock's file stays: it is nobody's content.
Descriptor lock(const std::filesystem::path& path) {
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kOwnerOnly));
    if (!file.is_open()) fail(path);
    while (::flock(file.get(), LOCK_EX) != 0) {
        if (errno != EINTR) fail(path);
    }
    return file;
}

std::string read_all(const Descriptor& file, const std::filesystem::path& path) {
    std::string bytes;
    char part[65536];
    for (;;) {
        const ssize_t count = ::read(file.get(), part, sizeof part);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail(path);
        if (count == 0) return bytes;
        bytes.append(part, static_cast<std::size_t>(count));
    }
}

/// Puts a file in another's place in one step. Where the system can exchange the two, that takes a thirtieth of the
/// time: to rename one over the other, ext4 first writes it to the disk.
bool take_place(const std::filesystem::path& fresh, const std::filesystem::path& path) {
    if (::renameat2(AT_FDCWD, fresh.c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE) != 0) {
        return ::rename(fresh.c_str(), path.c_str()) == 0;
    }
    ::unlink(fresh.c_str());
    return true;
}

std::filesystem::path beside(std::filesystem::path path, const char* ending) { return path += ending; }

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

// ---- The file ------------------------------------------------------------------------------------------

RegistryStore::Stamp RegistryStore::stamp_of(const struct ::stat& status) noexcept {
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

void RegistryStore::refresh() {
    if (file_.empty()) return;
    struct stat status = {};
    if (::lstat(file_.c_str(), &status) != 0 && !is_absent(errno)) fail(file_);
    if (stamp_ != stamp_of(status)) load();
}

void RegistryStore::load() {
    RegistryTree fresh;
    struct stat status = {};
    // A link is not followed: the file that takes this one's place would not be where it leads.
    Descriptor file(::open(file_.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file.is_open()) {
        if (::fstat(file.get(), &status) != 0) fail(file_);
        fresh.apply(read_registry(read_all(file, file_)));
    } else if (!is_absent(errno)) {
        fail(file_);
    }
    tree_.take(fresh);
    held_ = std::move(file);
    stamp_ = stamp_of(status);
}

bool RegistryStore::is_writable() const {
    if (file_.empty()) return true;
    const bool may_replace = ::access(file_.c_str(), W_OK) == 0 || errno == ENOENT;
    return may_replace && ::access(file_.parent_path().c_str(), W_OK) == 0;
}

void RegistryStore::update(const std::function<bool()>& change) {
    if (file_.empty()) {
        change();
        return;
    }
    if (!is_writable()) fail(file_);
    const Descriptor locked = lock(beside(file_, ".lock"));
    refresh();
    if (!change()) return;
    stamp_.reset();
    save();
}

void RegistryStore::save() {
    // What lies there was left by a writer that was killed under this lock, or is no file of ours.
    const std::filesystem::path fresh = beside(file_, ".new");
    ::unlink(fresh.c_str());
    struct stat status = {};
    Descriptor file(::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly));
    if (!file.is_open()) fail(fresh);
    if (!write_all(file.get(), tree_.text()) || ::fchmod(file.get(), kOwnerOnly) != 0 ||
        ::fstat(file.get(), &status) != 0 || !take_place(fresh, file_)) {
        const int reason = errno;
        ::unlink(fresh.c_str());
        errno = reason;
        fail(file_);
    }
    held_ = std::move(file);
    stamp_ = stamp_of(status);
}

}  // namespace vex::platform::native
