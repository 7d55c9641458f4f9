// The registry seam on the native side: handles, access rights and result codes over the stores.
#include "platform/native/registry_service.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <new>
#include <system_error>

#include "core/narrow.h"
#include "core/unicode.h"
#include "platform/native/registry_environment.h"

namespace vex::platform::native {
namespace {

// The rights of a key that its operations ask for.
constexpr std::uint32_t kQueryValue = 0x1;
constexpr std::uint32_t kSetValue = 0x2;
constexpr std::uint32_t kEnumerateSubKeys = 0x8;
/// Setting values, creating sub-keys and links, deleting, changing security.
constexpr std::uint32_t kWritingRights = 0xD0026;

constexpr std::uint32_t kMaximumAllowed = 0x02000000;
constexpr std::uint32_t kGenericAll = 0x10000000;
constexpr std::uint32_t kGenericWrite = 0x40000000;
constexpr std::uint32_t kGenericRead = 0x80000000;

// As on Windows.
constexpr std::size_t kLongestKeyName = 255;
constexpr std::size_t kLongestValueName = 16383;

std::uint32_t specific_rights(std::uint32_t access, bool writable) {
    if (access & kMaximumAllowed) access |= writable ? kKeyAllAccess : kKeyRead;
    if (access & kGenericAll) access |= kKeyAllAccess;
    if (access & kGenericWrite) access |= kKeyWrite;
    if (access & kGenericRead) access |= kKeyRead;
    return access & kKeyAllAccess;
}

bool is_string(std::uint32_t type) { return type == kRegSz || type == kRegExpandSz || type == kRegMultiSz; }

std::u16string utf16_of(const std::vector<std::uint8_t>& data) {
    std::u16string text(data.size() / 2, u'\0');
    for (std::size_t i = 0; i < text.size(); ++i) text[i] = static_cast<char16_t>(data[2 * i] | data[2 * i + 1] << 8);
    return text;
}

std::vector<std::uint8_t> bytes_of(std::u16string_view text) {
    std::vector<std::uint8_t> data;
    data.reserve(text.size() * 2);
    for (const char16_t c : text) {
        data.push_back(static_cast<std::uint8_t>(c));
        data.push_back(static_cast<std::uint8_t>(c >> 8));
    }
    return data;
}

/// Whether every name of a path can be created below a key of this depth.
bool can_be_created(std::u16string_view path, std::size_t depth) {
    while (!path.empty()) {
        const std::u16string_view name = take_name(path);
        // A key's name stands on one line of the file, between brackets.
        const bool one_line = std::none_of(name.begin(), name.end(), [](char16_t c) { return c < u' '; });
        if (name.size() > kLongestKeyName || !one_line || ++depth > kMaxKeyDepth) return false;
    }
    return true;
}

std::size_t depth_of(const RegistryNode& node) { return node.parent == nullptr ? 0 : depth_of(*node.parent) + 1; }

/// The answer of an operation that returns a name: kMoreData leaves everything as it was.
std::int32_t answer_name(const std::string& name, char* target, std::uint32_t& length) {
    if (name.size() >= length) return kMoreData;
    std::memcpy(target, name.c_str(), name.size() + 1);
    length = static_cast<std::uint32_t>(name.size());
    return kSuccess;
}

std::int32_t result_of(const std::system_error& error) {
    const std::error_code& code = error.code();
    if (code == std::errc::permission_denied || code == std::errc::read_only_file_system ||
        code == std::errc::operation_not_permitted) {
        return kAccessDenied;
    }
    if (code == std::errc::no_space_on_device || code.value() == EDQUOT) return kDiskFull;
    return kRegistryIoFailed;
}

}  // namespace

/// An operation's end with a result code.
class RegistryService::Failure : public std::exception {
public:
    explicit Failure(std::int32_t result) noexcept : result_(result) {}
    std::int32_t result() const noexcept { return result_; }

private:
    std::int32_t result_;
};

template <class Operation>
std::int32_t RegistryService::answered(Operation operation) noexcept {
    try {
        const std::lock_guard lock(mutex_);
        return operation();
    } catch (const Failure& failure) {
        return failure.result();
    } catch (const RegistryDamage&) {
        return kRegistryCorrupt;
    } catch (const std::system_error& error) {
        return result_of(error);
    } catch (const std::bad_alloc&) {
        return kNotEnoughMemory;
    } catch (const std::exception&) {
        return kRegistryIoFailed;
    }
}

RegistryService::RegistryService(const CodePage& code_page) : code_page_(code_page), local_(make_store({})) {}

RegistryService::~RegistryService() = default;

std::unique_ptr<RegistryStore> RegistryService::make_store(const std::filesystem::path& file) {
    // Open handles lead to the same keys of the tree that was read anew; those that are not in it any more
    // are left with the old ones, which are deleted with their tree.
    return std::make_unique<RegistryStore>(file, [this](RegistryStore& store, RegistryTree& fresh) {
        for (auto& [key, handle] : handles_) {
            if (handle.store != &store || handle.node->deleted) continue;
            if (RegistryNode* node = fresh.find(handle.node->path())) handle.node = node->shared_from_this();
        }
    });
}

void RegistryService::use_folder(const std::filesystem::path& folder) {
    auto store = make_store(folder / "registry");
    static_cast<void>(store->current_tree());
    const std::lock_guard lock(mutex_);
    handles_.clear();
    remotes_.clear();
    local_ = std::move(store);
    folder_ = folder;
}

void RegistryService::import(const std::string& text) {
    const std::lock_guard lock(mutex_);
    local_->import(text);
}

std::u16string RegistryService::wide(const char* text) const {
    return text == nullptr ? std::u16string() : code_page_.from_ansi(text);
}

RegistryService::Handle RegistryService::known(RegistryKey key, std::uint32_t rights) const {
    const auto found = handles_.find(key);
    if (found != handles_.end()) {
        const Handle& handle = found->second;
        if (handle.node->deleted) throw Failure(kKeyDeleted);
        if ((handle.access & rights) != rights) throw Failure(kAccessDenied);
        return handle;
    }
    const auto predefined = static_cast<std::int32_t>(key);
    RegistryNode* root = key == registry_key(predefined) ? local_->known_tree().root(predefined) : nullptr;
    if (root == nullptr) throw Failure(kInvalidHandle);
    return {local_.get(), root->shared_from_this(), kKeyAllAccess};
}

RegistryService::Handle RegistryService::current(RegistryKey key, std::uint32_t rights) {
    const auto found = handles_.find(key);
    RegistryStore& store = found == handles_.end() ? *local_ : *found->second.store;
    static_cast<void>(store.current_tree());
    return known(key, rights);
}

RegistryKey RegistryService::add_handle(RegistryStore& store, RegistryNode& node, std::uint32_t access) {
    const std::uint32_t rights = specific_rights(access, true);
    std::uint32_t granted = rights;
    if ((rights & kWritingRights) != 0 && !store.is_writable()) {
        granted = specific_rights(access, false);
        if ((granted & kWritingRights) != 0) throw Failure(kAccessDenied);
    }
    // Handles are positive 32-bit numbers, as callers keep them in such.
    do {
        last_handle_ = last_handle_ > std::numeric_limits<std::int32_t>::max() - 4 ? 4 : last_handle_ + 4;
    } while (handles_.contains(last_handle_));
    handles_.emplace(last_handle_, Handle{&store, node.shared_from_this(), granted});
    return last_handle_;
}

std::int32_t RegistryService::open_key(RegistryKey parent, const char* path, std::uint32_t access,
                                       RegistryKey& key) noexcept {
    key = 0;
    return answered([&] {
        const Handle handle = current(parent);
        RegistryNode* node = handle.node->find(wide(path));
        if (node == nullptr) return kFileNotFound;
        key = add_handle(*handle.store, *node, access);
        return kSuccess;
    });
}

std::int32_t RegistryService::create_key(RegistryKey parent, const char* path, const char* /*class_name*/,
                                         std::uint32_t access, const SecurityAttributes& /*attributes*/,
                                         RegistryKey& key) noexcept {
    key = 0;
    return answered([&]() -> std::int32_t {
        const std::u16string below = wide(path);
        if (const Handle above = current(parent); above.node->find(below) == nullptr) {
            const std::int32_t result = above.store->update([&](RegistryTree&, RegistryWriter& writer) -> std::int32_t {
                const RegistryNode& from = *known(parent).node;
                if (!can_be_created(below, depth_of(from))) return kInvalidParameter;
                writer.key(from.path() + u'\\' + below);
                return kSuccess;
            });
            if (result != kSuccess) return result;
        }
        const Handle handle = known(parent);
        RegistryNode* node = handle.node->find(below);
        if (node == nullptr) return kRegistryIoFailed;
        key = add_handle(*handle.store, *node, access);
        return kSuccess;
    });
}

std::int32_t RegistryService::close_key(RegistryKey key) noexcept {
    return answered([&] {
        if (handles_.erase(key) > 0) return kSuccess;
        const auto predefined = static_cast<std::int32_t>(key);
        const bool is_root = key == registry_key(predefined) && local_->known_tree().root(predefined) != nullptr;
        return is_root ? kSuccess : kInvalidHandle;
    });
}

std::int32_t RegistryService::delete_key(RegistryKey parent, const char* path) noexcept {
    return answered([&]() -> std::int32_t {
        if (path == nullptr) return kInvalidParameter;
        return current(parent).store->update([&](RegistryTree& tree, RegistryWriter& writer) -> std::int32_t {
            const RegistryNode* node = known(parent).node->find(wide(path));
            if (node == nullptr) return kFileNotFound;
            if (tree.is_permanent(*node) || node->subkeys.size() > 0) return kAccessDenied;
            writer.key_deleted(node->path());
            return kSuccess;
        });
    });
}

std::int32_t RegistryService::delete_value(RegistryKey key, const char* name) noexcept {
    return answered([&] {
        return current(key, kSetValue).store->update([&](RegistryTree&, RegistryWriter& writer) -> std::int32_t {
            const RegistryNode& node = *known(key).node;
            const RegistryValue* value = node.values.find(wide(name));
            if (value == nullptr) return kFileNotFound;
            writer.key(node.path());
            writer.value_deleted(value->name);
            return kSuccess;
        });
    });
}

std::int32_t RegistryService::enum_key(RegistryKey key, std::uint32_t index, char* name,
                                       std::uint32_t& name_length) noexcept {
    return answered([&]() -> std::int32_t {
        const auto& subkeys = current(key, kEnumerateSubKeys).node->subkeys;
        if (index >= subkeys.size()) return kNoMoreItems;
        return answer_name(code_page_.to_ansi(subkeys[index]->name), name, name_length);
    });
}

std::int32_t RegistryService::enum_value(RegistryKey key, std::uint32_t index, char* name, std::uint32_t& name_length,
                                         std::uint32_t& type, std::uint8_t* data, std::uint32_t& data_size) noexcept {
    return answered([&]() -> std::int32_t {
        const auto& values = current(key, kQueryValue).node->values;
        if (index >= values.size()) return kNoMoreItems;
        const std::int32_t result = answer_data(*values[index], type, data, data_size);
        if (result != kSuccess) return result;
        return answer_name(code_page_.to_ansi(values[index]->name), name, name_length);
    });
}

std::int32_t RegistryService::query_value(RegistryKey key, const char* name, std::uint32_t& type, std::uint8_t* data,
                                          std::uint32_t& data_size) noexcept {
    return answered([&]() -> std::int32_t {
        const RegistryValue* value = current(key, kQueryValue).node->values.find(wide(name));
        return value == nullptr ? kFileNotFound : answer_data(*value, type, data, data_size);
    });
}

std::int32_t RegistryService::answer_data(const RegistryValue& value, std::uint32_t& type, std::uint8_t* data,
                                          std::uint32_t& data_size) const {
    type = value.type;
    const std::uint32_t room = data_size;
    const auto answer = [&](const void* bytes, std::size_t size) {
        data_size = narrowed<std::uint32_t>(size);
        if (data == nullptr) return kSuccess;
        if (size > room) return kMoreData;
        if (size > 0) std::memcpy(data, bytes, size);
        return kSuccess;
    };
    if (!is_string(value.type)) return answer(value.data.data(), value.data.size());
    const std::string text = code_page_.to_ansi(utf16_of(value.data));
    const std::int32_t result = answer(text.data(), text.size());
    // As on Windows, a text without its null gets one where there is room, and it does not count.
    const bool terminated = text.empty() || text.back() == '\0';
    if (result == kSuccess && data != nullptr && !terminated && text.size() < room) data[text.size()] = 0;
    return result;
}

std::int32_t RegistryService::set_value(RegistryKey key, const char* name, std::uint32_t type, const std::uint8_t* data,
                                        std::uint32_t data_size) noexcept {
    return answered([&]() -> std::int32_t {
        if (data == nullptr && data_size > 0) return kInvalidParameter;
        RegistryValue value{wide(name), type, {}};
        if (value.name.size() > kLongestValueName) return kInvalidParameter;
        if (is_string(type)) {
            value.data = bytes_of(code_page_.from_ansi({reinterpret_cast<const char*>(data), data_size}));
        } else {
            value.data.assign(data, data + data_size);
        }
        return current(key, kSetValue).store->update([&](RegistryTree&, RegistryWriter& writer) {
            const RegistryNode& node = *known(key).node;
            const RegistryValue* old = node.values.find(value.name);
            // The file already tells what it holds.
            if (old != nullptr && old->type == type && old->data == value.data) return kSuccess;
            writer.key(node.path());
            writer.value(std::move(value));
            return kSuccess;
        });
    });
}

RegistryStore* RegistryService::remote_store(std::string_view computer) {
    const std::u16string name = to_upper(code_page_.from_ansi(computer));
    const auto known_remote = remotes_.find(name);
    if (known_remote != remotes_.end()) return known_remote->second.get();
    if (folder_.empty()) return nullptr;
    std::error_code error;
    for (std::filesystem::directory_iterator it(folder_ / "remote", error), end; !error && it != end;
         it.increment(error)) {
        if (to_upper(from_utf8(it->path().filename().native())) != name) continue;
        return remotes_.emplace(name, make_store(it->path() / "registry")).first->second.get();
    }
    return nullptr;
}

std::int32_t RegistryService::connect_registry(const char* computer, RegistryKey root, RegistryKey& key) noexcept {
    key = 0;
    return answered([&]() -> std::int32_t {
        const auto predefined = static_cast<std::int32_t>(root);
        if (root != registry_key(predefined) || local_->known_tree().root(predefined) == nullptr) return kInvalidHandle;
        std::string_view name = computer == nullptr ? std::string_view() : std::string_view(computer);
        name.remove_prefix(std::min(name.size(), name.find_first_not_of('\\')));
        // Another computer's current user, and so its classes, would be nobody's.
        const bool can_be_remote = predefined == kHkeyLocalMachine || predefined == kHkeyUsers;
        if (!name.empty() && !can_be_remote) return kInvalidHandle;
        RegistryStore* store = name.empty() ? local_.get() : remote_store(name);
        if (store == nullptr) return kBadNetPath;
        key = add_handle(*store, *store->current_tree().root(predefined), kMaximumAllowed);
        return kSuccess;
    });
}

std::uint32_t RegistryService::expand_environment(const char* source, char* target, std::uint32_t capacity) noexcept {
    std::uint32_t length = 0;
    const std::int32_t result = answered([&] {
        const std::string expanded = code_page_.to_ansi(native::expand_environment(wide(source)));
        length = narrowed<std::uint32_t>(expanded.size() + 1);
        if (length <= capacity) std::memcpy(target, expanded.c_str(), length);
        return kSuccess;
    });
    return result == kSuccess ? length : 0;
}

}  // namespace vex::platform::native
