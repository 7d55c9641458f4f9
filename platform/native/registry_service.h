// The registry seam on the native side: handles, rights and result codes over the stores.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/native/registry_store.h"
#include "platform/registry.h"

namespace vex::platform::native {

/// The registry of one computer and of those that it can reach: each is a file "registry", its own in the
/// computer's folder, theirs in the sub-folders of "remote" named after them. Any thread.
class RegistryService final : public Registry {
public:
    /// An empty registry in memory, and no other computer.
    RegistryService();

    /// Changes to the registry in `folder`. All handles become invalid. Raises RegistryDamage or std::system_error,
    /// with the registry before still in place.
    void use_folder(const std::filesystem::path& folder);

    std::int32_t open_key(RegistryKey parent, const char* path, std::uint32_t access,
                          RegistryKey& key) noexcept override;
    std::int32_t create_key(RegistryKey parent, const char* path, const char* class_name, std::uint32_t access,
                            const SecurityAttributes& attributes, RegistryKey& key) noexcept override;
    std::int32_t close_key(RegistryKey key) noexcept override;
    std::int32_t delete_key(RegistryKey parent, const char* path) noexcept override;
    std::int32_t delete_value(RegistryKey key, const char* name) noexcept override;
    std::int32_t enum_key(RegistryKey key, std::uint32_t index, char* name,
                          std::uint32_t& name_length) noexcept override;
    std::int32_t enum_value(RegistryKey key, std::uint32_t index, char* name, std::uint32_t& name_length,
                            std::uint32_t& type, std::uint8_t* data, std::uint32_t& data_size) noexcept override;
    std::int32_t query_value(RegistryKey key, const char* name, std::uint32_t& type, std::uint8_t* data,
                             std::uint32_t& data_size) noexcept override;
    std::int32_t set_value(RegistryKey key, const char* name, std::uint32_t type, const std::uint8_t* data,
                           std::uint32_t data_size) noexcept override;
    std::int32_t connect_registry(const char* computer, RegistryKey root, RegistryKey& key) noexcept override;
    std::uint32_t expand_environment(const char* source, char* target, std::uint32_t capacity) noexcept override;

private:
    /// An open or predefined key.
    struct Handle {
        RegistryStore* store;
        std::shared_ptr<RegistryNode> key;
        std::uint32_t access;
    };

    template <class Operation>
    std::int32_t answered(Operation operation) noexcept;
    /// Fails with kInvalidHandle, or with kAccessDenied when it lacks a right.
    const Handle& handle(RegistryKey key, std::uint32_t rights = 0) const;
    /// The key of a handle as far as it was read. Fails with kKeyDeleted.
    static RegistryNode& key_of(const Handle& handle);
    /// The same after reading what other processes have changed.
    static RegistryNode& current(const Handle& handle);
    void add_predefined_handles();
    RegistryKey add_handle(RegistryStore& store, RegistryNode& key, std::uint32_t access);
    /// Null when there is no such computer.
    RegistryStore* remote_store(std::string_view computer);

    std::mutex mutex_;
    std::filesystem::path folder_;
    std::unique_ptr<RegistryStore> local_;
    std::map<std::u16string, std::unique_ptr<RegistryStore>> remotes_;
    std::unordered_map<RegistryKey, Handle> handles_;
    std::int32_t last_handle_ = 0;
};

}  // namespace vex::platform::native
