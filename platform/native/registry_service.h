// The registry seam on the native side: handles, rights and result codes over the store.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/native/registry_store.h"
#include "platform/registry.h"

namespace vex::platform::native {

/// The registry of one computer, which reaches no other one. Any thread.
class RegistryService final : public Registry {
public:
    /// An empty registry in memory.
    RegistryService() { add_predefined_handles(); }

    /// Changes to the file "registry" in `folder`. All handles become invalid. Raises RegistryDamage or std::system_error,
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
    /// An open or predefined key. It keeps no key's values: they go when the key is deleted.
    struct Handle {
        std::u16string path;
        std::weak_ptr<RegistryValues> values;
        std::uint32_t access;
    };

    template <class Operation>
    std::int32_t answered(Operation operation) noexcept;
    /// Fails with kInvalidHandle, or with kAccessDenied when it lacks a right.
    const Handle& handle(RegistryKey key, std::uint32_t rights = 0) const;
    /// The values of its key as far as they were read. Fails with kKeyDeleted.
    static RegistryValues& values_of(const Handle& handle);
    /// The handle of a key that is there after reading what other processes have changed. Fails as both of them do.
    const Handle& current(RegistryKey key, std::uint32_t rights = 0);
    void add_predefined_handles();
    RegistryKey add_handle(const std::u16string& path, const std::shared_ptr<RegistryValues>& values,
                           std::uint32_t access);

    std::mutex mutex_;
    RegistryStore store_;
    std::map<RegistryKey, Handle> handles_;
};

}  // namespace vex::platform::native
