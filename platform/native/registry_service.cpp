// The registry seam on the native side: handles, rights and result codes over the store.
#include "platform/native/registry_service.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <map>
#include <mutex>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "core/narrow.h"
#include "core/unicode.h"
#include "platform/native/registry_store.h"
#include "platform/system.h"

namespace vex::platform::native {
namespace {

// The rights of a key that its operations ask for.
constexpr std::uint32_t kQueryValue = 0x1;
constexpr std::uint32_t kSetValue = 0x2;
constexpr std::uint32_t kEnumerateSubKeys = 0x8;

/// Handles and paths.
constexpr std::pair<std::int32_t, std::u16string_view> kPredefinedKeys[] = {
    {kHkeyClassesRoot, kClassesPath},
    {kHkeyCurrentUser, u"HKEY_CURRENT_USER"},
    {kHkeyLocalMachine, u"HKEY_LOCAL_MACHINE"},
    {kHkeyUsers, u"HKEY_USERS"},
};

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
    const std::string bytes =
        is_string(value.type) ? to_ansi(text_of(value.data)) : std::string(value.data.begin(), value.data.end());
    const std::uint32_t room = data_size;
    type = value.type;
    data_size = narrowed<std::uint32_t>(bytes.size());
    if (data == nullptr) return kSuccess;
    if (bytes.size() > room) return kMoreData;
    std::copy(bytes.begin(), bytes.end(), data);
    // As on Windows, a text without its null gets one where there is room, and it does not count.
    const bool unterminated = is_string(type) && !bytes.empty() && bytes.back() != '\0';
    if (unterminated && bytes.size() < room) data[bytes.size()] = 0;
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

class RegistryService final : public NativeRegistry {
public:
    RegistryService() { add_predefined_handles(); }

    void use_folder(const std::filesystem::path& folder) override {
        RegistryStore store(folder / "registry");
        store.refresh();
        const std::lock_guard lock(mutex_);
        store_ = std::move(store);
        handles_.clear();
        add_predefined_handles();
    }

    std::int32_t open_key(RegistryKey parent, const char* path, std::uint32_t access,
                          RegistryKey& key) noexcept override {
        key = 0;
        return answered([&] {
            const Handle& above = current(parent);
            const std::u16string full = path_below(above.path, wide(path));
            const auto values = store_.keys().find(full);
            if (values == nullptr) return kFileNotFound;
            key = add_handle(full, values, access);
            return kSuccess;
        });
    }

    std::int32_t create_key(RegistryKey parent, const char* path, const char* /*class_name*/, std::uint32_t access,
                            const SecurityAttributes& /*attributes*/, RegistryKey& key) noexcept override {
        key = 0;
        return answered([&] {
            const Handle& above = current(parent);
            const std::u16string full = path_below(above.path, wide(path));
            auto values = store_.keys().find(full);
            if (values == nullptr) {
                store_.update([&] {
                    values_of(above);
                    values = store_.keys().create(full);
                    return true;
                });
            }
            key = add_handle(full, values, access);
            return kSuccess;
        });
    }

    std::int32_t close_key(RegistryKey key) noexcept override {
        return answered([&] {
            static_cast<void>(handle(key));
            // The predefined ones, which are negative, never really close.
            if (key > 0) handles_.erase(key);
            return kSuccess;
        });
    }

    std::int32_t delete_key(RegistryKey parent, const char* path) noexcept override {
        return answered([&] {
            if (path == nullptr) return kInvalidParameter;
            const Handle& above = handle(parent);
            store_.update([&] {
                values_of(above);
                RegistryKeys& keys = store_.keys();
                const std::u16string full = path_below(above.path, wide(path));
                if (keys.find(full) == nullptr) throw Failure{kFileNotFound};
                if (keys.is_permanent(full) || keys.name_below(full, 0)) throw Failure{kAccessDenied};
                keys.remove(full);
                return true;
            });
            return kSuccess;
        });
    }

    std::int32_t delete_value(RegistryKey key, const char* name) noexcept override {
        return answered([&] {
            const Handle& holder = handle(key, kSetValue);
            store_.update([&] {
                if (values_of(holder).erase(wide(name)) == 0) throw Failure{kFileNotFound};
                return true;
            });
            return kSuccess;
        });
    }

    std::int32_t enum_key(RegistryKey key, std::uint32_t index, char* name,
                          std::uint32_t& name_length) noexcept override {
        return answered([&]() -> std::int32_t {
            const auto found = store_.keys().name_below(current(key, kEnumerateSubKeys).path, index);
            return found ? answer_name(to_ansi(*found), name, name_length) : kNoMoreItems;
        });
    }

    std::int32_t enum_value(RegistryKey key, std::uint32_t index, char* name, std::uint32_t& name_length,
                            std::uint32_t& type, std::uint8_t* data, std::uint32_t& data_size) noexcept override {
        return answered([&]() -> std::int32_t {
            const RegistryValues& values = values_of(current(key, kQueryValue));
            if (index >= values.size()) return kNoMoreItems;
            const auto& [its_name, value] = *std::next(values.begin(), index);
            const std::int32_t result = answer_data(value, type, data, data_size);
            return result == kSuccess ? answer_name(to_ansi(its_name), name, name_length) : result;
        });
    }

    std::int32_t query_value(RegistryKey key, const char* name, std::uint32_t& type, std::uint8_t* data,
                             std::uint32_t& data_size) noexcept override {
        return answered([&]() -> std::int32_t {
            const RegistryValues& values = values_of(current(key, kQueryValue));
            const auto found = values.find(wide(name));
            return found == values.end() ? kFileNotFound : answer_data(found->second, type, data, data_size);
        });
    }

    std::int32_t set_value(RegistryKey key, const char* name, std::uint32_t type, const std::uint8_t* data,
                           std::uint32_t data_size) noexcept override {
        return answered([&] {
            if (data == nullptr && data_size > 0) return kInvalidParameter;
            RegistryValue value{type, {}};
            if (is_string(type)) {
                value.data = data_of(from_ansi({reinterpret_cast<const char*>(data), data_size}));
            } else {
                value.data.assign(data, data + data_size);
            }
            const Handle& holder = handle(key, kSetValue);
            store_.update([&] {
                const auto [place, is_new] = values_of(holder).try_emplace(wide(name), value);
                // The file already tells what it holds.
                if (!is_new && place->second == value) return false;
                place->second = value;
                return true;
            });
            return kSuccess;
        });
    }

    std::int32_t connect_registry(const char* computer, RegistryKey root, RegistryKey& key) noexcept override {
        key = 0;
        return answered([&] {
            if (root >= 0) return kInvalidHandle;
            const Handle& own = handle(root);
            if (computer != nullptr && *computer != '\0') return kBadNetPath;
            key = add_handle(own.path, own.values.lock(), kKeyAllAccess);
            return kSuccess;
        });
    }

    std::uint32_t expand_environment(const char* source, char* target, std::uint32_t capacity) noexcept override {
        std::uint32_t length = 0;
        const std::int32_t result = answered([&] {
            const std::string text = to_ansi(expanded(wide(source)));
            length = narrowed<std::uint32_t>(text.size() + 1);
            if (length <= capacity) std::memcpy(target, text.c_str(), length);
            return kSuccess;
        });
        return result == kSuccess ? length : 0;
    }

private:
    /// An open or predefined key. It keeps no key's values: they go when the key is deleted.
    struct Handle {
        std::u16string path;
        std::weak_ptr<RegistryValues> values;
        std::uint32_t access;
    };

    template <class Operation>
    std::int32_t answered(Operation operation) noexcept {
        try {
            const std::lock_guard lock(mutex_);
            return operation();
        } catch (const Failure& failure) {
            return failure.result;
        } catch (const RegistryDamage&) {
            return kRegistryCorrupt;
        } catch (const std::invalid_argument&) {
            return kInvalidParameter;
        } catch (const std::system_error& error) {
            return result_of(error);
        } catch (...) {
            return kRegistryIoFailed;
        }
    }

    /// Fails with kInvalidHandle, or with kAccessDenied when it lacks a right.
    const Handle& handle(RegistryKey key, std::uint32_t rights = 0) const {
        const auto found = handles_.find(key);
        if (found == handles_.end()) throw Failure{kInvalidHandle};
        if ((found->second.access & rights) != rights) throw Failure{kAccessDenied};
        return found->second;
    }

    /// The values of its key as far as they were read. Fails with kKeyDeleted.
    static RegistryValues& values_of(const Handle& handle) {
        const auto values = handle.values.lock();
        if (values == nullptr) throw Failure{kKeyDeleted};
        return *values;
    }

    /// The handle of a key that is there after reading what other processes have changed. Fails as both of them do.
    const Handle& current(RegistryKey key, std::uint32_t rights = 0) {
        const Handle& found = handle(key, rights);
        store_.refresh();
        values_of(found);
        return found;
    }

    void add_predefined_handles() {
        for (const auto& [key, path] : kPredefinedKeys) {
            handles_[registry_key(key)] = {std::u16string(path), store_.keys().find(path), kKeyAllAccess};
        }
    }

    RegistryKey add_handle(const std::u16string& path, const std::shared_ptr<RegistryValues>& values,
                           std::uint32_t access) {
        // Positive, which tells it from the predefined ones.
        const RegistryKey last = std::max<RegistryKey>(handles_.rbegin()->first, 0);
        const auto key = narrowed<std::int32_t>(last + 4);
        handles_[key] = {path, values, access};
        return key;
    }

    std::mutex mutex_;
    RegistryStore store_;
    std::map<RegistryKey, Handle> handles_;
};

}  // namespace

std::unique_ptr<NativeRegistry> make_registry() { return std::make_unique<RegistryService>(); }

}  // namespace vex::platform::native
