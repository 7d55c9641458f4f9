// The registry seam on the native side: handles, rights and result codes over the stores.
#include "platform/native/registry_service.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <new>
#include <optional>
#include <system_error>

#include "core/narrow.h"
#include "core/unicode.h"
#include "platform/system.h"

namespace vex::platform::native {
namespace {

// The rights of a key that its operations ask for.
constexpr std::uint32_t kQueryValue = 0x1;
constexpr std::uint32_t kSetValue = 0x2;
constexpr std::uint32_t kEnumerateSubKeys = 0x8;
/// Setting values, creating sub-keys and links, deleting, changing security.
constexpr std::uint32_t kWritingRights = 0xD0026;

/// Whatever the store allows.
constexpr std::uint32_t kMaximumAllowed = 0x02000000;

constexpr std::size_t kLongestValueName = 16383;

/// An operation's end with a result code.
struct Failure {
    std::int32_t result;
};

/// The answer of an operation that returns a name: kMoreData leaves everything as it was.
std::int32_t answer_name(const std::string& name, char* target, std::uint32_t& length) {
    if (name.size() >= length) return kMoreData;
    std::memcpy(target, name.c_str(), name.size() + 1);
    length = static_cast<std::uint32_t>(name.size());
    return kSuccess;
}

/// A null pointer is an empty text.
std::u16string wide(const char* text) { return text == nullptr ? std::u16string() : from_ansi(text); }

std::int32_t answer_data(const RegistryValue& value, std::uint32_t& type, std::uint8_t* data,
                         std::uint32_t& data_size) {
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
    const std::string text = to_ansi(text_of(value.data));
    const std::int32_t result = answer(text.data(), text.size());
    // As on Windows, a text without its null gets one where there is room, and it does not count.
    const bool terminated = text.empty() || text.back() == '\0';
    if (result == kSuccess && data != nullptr && !terminated && text.size() < room) data[text.size()] = 0;
    return result;
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

/// The value of a variable of the process's environment; its name is found without regard to case.
std::optional<std::u16string> variable(std::u16string_view name) {
    if (name.empty()) return std::nullopt;
    for (char** each = environ; each != nullptr && *each != nullptr; ++each) {
        const std::string_view entry = *each;
        const std::size_t equals = entry.find('=');
        if (equals == entry.npos || !equal_ignoring_case(from_utf8(entry.substr(0, equals)), name)) continue;
        return from_utf8(entry.substr(equals + 1));
    }
    return std::nullopt;
}

/// What is no variable stays as it is.
std::u16string expanded(std::u16string_view text) {
    std::u16string result;
    for (;;) {
        const std::size_t start = text.find(u'%');
        const std::size_t end = start == text.npos ? start : text.find(u'%', start + 1);
        if (end == text.npos) return result.append(text);
        result += text.substr(0, start);
        const auto value = variable(text.substr(start + 1, end - start - 1));
        // The sign that ends an unknown name may begin another.
        result += value ? *value : text.substr(start, end - start);
        text.remove_prefix(value ? end + 1 : end);
    }
}

}  // namespace

template <class Operation>
std::int32_t RegistryService::answered(Operation operation) noexcept {
    try {
        const std::lock_guard lock(mutex_);
        return operation();
    } catch (const Failure& failure) {
        return failure.result;
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

RegistryService::RegistryService() : local_(std::make_unique<RegistryStore>()) { add_predefined_handles(); }

void RegistryService::use_folder(const std::filesystem::path& folder) {
    auto store = std::make_unique<RegistryStore>(folder / "registry");
    store->refresh();
    const std::lock_guard lock(mutex_);
    handles_.clear();
    remotes_.clear();
    local_ = std::move(store);
    folder_ = folder;
    add_predefined_handles();
}

void RegistryService::add_predefined_handles() {
    for (const RegistryRoot& root : kRegistryRoots) {
        RegistryNode& key = *local_->tree().root(root.name);
        handles_[registry_key(root.handle)] = {local_.get(), key.shared_from_this(), kKeyAllAccess};
    }
}

const RegistryService::Handle& RegistryService::handle(RegistryKey key, std::uint32_t rights) const {
    const auto found = handles_.find(key);
    if (found == handles_.end()) throw Failure{kInvalidHandle};
    if ((found->second.access & rights) != rights) throw Failure{kAccessDenied};
    return found->second;
}

RegistryNode& RegistryService::key_of(const Handle& handle) {
    if (handle.key->is_deleted()) throw Failure{kKeyDeleted};
    return *handle.key;
}

RegistryNode& RegistryService::current(const Handle& handle) {
    handle.store->refresh();
    return key_of(handle);
}

RegistryKey RegistryService::add_handle(RegistryStore& store, RegistryNode& key, std::uint32_t access) {
    const bool writable = (access & (kMaximumAllowed | kWritingRights)) == 0 || store.is_writable();
    if (access == kMaximumAllowed) access = writable ? kKeyAllAccess : kKeyRead;
    if (!writable && (access & kWritingRights) != 0) throw Failure{kAccessDenied};
    // Handles are positive 32-bit numbers, as callers keep them in such.
    do {
        last_handle_ = last_handle_ > std::numeric_limits<std::int32_t>::max() - 4 ? 4 : last_handle_ + 4;
    } while (handles_.contains(last_handle_));
    handles_[last_handle_] = {&store, key.shared_from_this(), access};
    return last_handle_;
}

std::int32_t RegistryService::open_key(RegistryKey parent, const char* path, std::uint32_t access,
                                       RegistryKey& key) noexcept {
    key = 0;
    return answered([&] {
        const Handle& above = handle(parent);
        RegistryNode* found = current(above).find(wide(path));
        if (found == nullptr) return kFileNotFound;
        key = add_handle(*above.store, *found, access);
        return kSuccess;
    });
}

std::int32_t RegistryService::create_key(RegistryKey parent, const char* path, const char* /*class_name*/,
                                         std::uint32_t access, const SecurityAttributes& /*attributes*/,
                                         RegistryKey& key) noexcept {
    key = 0;
    return answered([&] {
        const Handle& above = handle(parent);
        const std::u16string below = wide(path);
        RegistryNode* found = current(above).find(below);
        if (found == nullptr) {
            above.store->update([&] {
                RegistryNode& from = key_of(above);
                if (fault_of_path(below, from.depth()) != nullptr) throw Failure{kInvalidParameter};
                found = &from.create(below);
                return true;
            });
        }
        key = add_handle(*above.store, *found, access);
        return kSuccess;
    });
}

std::int32_t RegistryService::close_key(RegistryKey key) noexcept {
    return answered([&] {
        static_cast<void>(handle(key));
        // The predefined ones, which are negative, never really close.
        if (key > 0) handles_.erase(key);
        return kSuccess;
    });
}

std::int32_t RegistryService::delete_key(RegistryKey parent, const char* path) noexcept {
    return answered([&] {
        if (path == nullptr) return kInvalidParameter;
        const Handle& above = handle(parent);
        above.store->update([&] {
            RegistryNode* found = key_of(above).find(wide(path));
            if (found == nullptr) throw Failure{kFileNotFound};
            if (above.store->tree().is_permanent(*found) || found->keys.size() > 0) throw Failure{kAccessDenied};
            found->remove();
            return true;
        });
        return kSuccess;
    });
}

std::int32_t RegistryService::delete_value(RegistryKey key, const char* name) noexcept {
    return answered([&] {
        const Handle& holder = handle(key, kSetValue);
        holder.store->update([&] {
            if (!key_of(holder).values.remove(wide(name))) throw Failure{kFileNotFound};
            return true;
        });
        return kSuccess;
    });
}

std::int32_t RegistryService::enum_key(RegistryKey key, std::uint32_t index, char* name,
                                       std::uint32_t& name_length) noexcept {
    return answered([&]() -> std::int32_t {
        const auto& keys = current(handle(key, kEnumerateSubKeys)).keys;
        if (index >= keys.size()) return kNoMoreItems;
        return answer_name(to_ansi(keys[index].name), name, name_length);
    });
}

std::int32_t RegistryService::enum_value(RegistryKey key, std::uint32_t index, char* name, std::uint32_t& name_length,
                                         std::uint32_t& type, std::uint8_t* data, std::uint32_t& data_size) noexcept {
    return answered([&]() -> std::int32_t {
        const auto& values = current(handle(key, kQueryValue)).values;
        if (index >= values.size()) return kNoMoreItems;
        const std::int32_t result = answer_data(values[index], type, data, data_size);
        if (result != kSuccess) return result;
        return answer_name(to_ansi(values[index].name), name, name_length);
    });
}

std::int32_t RegistryService::query_value(RegistryKey key, const char* name, std::uint32_t& type, std::uint8_t* data,
                                          std::uint32_t& data_size) noexcept {
    return answered([&]() -> std::int32_t {
        const auto value = current(handle(key, kQueryValue)).values.find(wide(name));
        return value == nullptr ? kFileNotFound : answer_data(*value, type, data, data_size);
    });
}

std::int32_t RegistryService::set_value(RegistryKey key, const char* name, std::uint32_t type, const std::uint8_t* data,
                                        std::uint32_t data_size) noexcept {
    return answered([&]() -> std::int32_t {
        if (data == nullptr && data_size > 0) return kInvalidParameter;
        RegistryValue value{wide(name), type, {}};
        if (value.name.size() > kLongestValueName) return kInvalidParameter;
        if (is_string(type)) {
            value.data = data_of(from_ansi({reinterpret_cast<const char*>(data), data_size}));
        } else {
            value.data.assign(data, data + data_size);
        }
        const Handle& holder = handle(key, kSetValue);
        holder.store->update([&] {
            NameList<RegistryValue>& values = key_of(holder).values;
            const auto old = values.find(value.name);
            // The file already tells what it holds.
            if (old != nullptr && old->type == type && old->data == value.data) return false;
            RegistryValue& kept = values.at(value.name);
            kept.type = type;
            kept.data = std::move(value.data);
            return true;
        });
        return kSuccess;
    });
}

RegistryStore* RegistryService::remote_store(std::string_view computer) {
    const std::u16string name = to_upper(from_ansi(computer));
    const auto known_remote = remotes_.find(name);
    if (known_remote != remotes_.end()) return known_remote->second.get();
    if (folder_.empty()) return nullptr;
    std::error_code error;
    for (std::filesystem::directory_iterator it(folder_ / "remote", error), end; !error && it != end;
         it.increment(error)) {
        if (to_upper(from_utf8(it->path().filename().native())) != name) continue;
        return remotes_.emplace(name, std::make_unique<RegistryStore>(it->path() / "registry")).first->second.get();
    }
    return nullptr;
}

std::int32_t RegistryService::connect_registry(const char* computer, RegistryKey root, RegistryKey& key) noexcept {
    key = 0;
    return answered([&]() -> std::int32_t {
        if (root >= 0 || handles_.find(root) == handles_.end()) return kInvalidHandle;
        std::string_view name = computer == nullptr ? std::string_view() : std::string_view(computer);
        name.remove_prefix(std::min(name.size(), name.find_first_not_of('\\')));
        // Another computer's current user, and so its classes, would be nobody's.
        const bool can_be_remote = root == registry_key(kHkeyLocalMachine) || root == registry_key(kHkeyUsers);
        if (!name.empty() && !can_be_remote) return kInvalidHandle;
        RegistryStore* store = name.empty() ? local_.get() : remote_store(name);
        if (store == nullptr) return kBadNetPath;
        store->refresh();
        key = add_handle(*store, *store->tree().root(handle(root).key->name), kMaximumAllowed);
        return kSuccess;
    });
}

std::uint32_t RegistryService::expand_environment(const char* source, char* target, std::uint32_t capacity) noexcept {
    std::uint32_t length = 0;
    const std::int32_t result = answered([&] {
        const std::string text = to_ansi(expanded(wide(source)));
        length = narrowed<std::uint32_t>(text.size() + 1);
        if (length <= capacity) std::memcpy(target, text.c_str(), length);
        return kSuccess;
    });
    return result == kSuccess ? length : 0;
}

}  // namespace vex::platform::native
