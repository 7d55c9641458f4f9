// The registry seam on advapi32: each operation is the system's own.
#include "platform/registry.h"

#include "platform/win32/windows_api.h"

namespace vex::platform {
namespace {

HKEY key_of(RegistryKey key) noexcept { return reinterpret_cast<HKEY>(key); }
DWORD* dword(std::uint32_t& number) noexcept { return reinterpret_cast<DWORD*>(&number); }

/// Where the system puts a key that it hands out.
class KeyPlace {
public:
    explicit KeyPlace(RegistryKey& key) noexcept : key_(key) {}
    KeyPlace(const KeyPlace&) = delete;
    KeyPlace& operator=(const KeyPlace&) = delete;
    ~KeyPlace() { key_ = reinterpret_cast<RegistryKey>(handle_); }
    operator PHKEY() noexcept { return &handle_; }

private:
    RegistryKey& key_;
    HKEY handle_ = nullptr;
};

class SystemRegistry final : public Registry {
public:
    std::int32_t open_key(RegistryKey parent, const char* path, std::uint32_t access,
                          RegistryKey& key) noexcept override {
        return RegOpenKeyExA(key_of(parent), path, 0, access, KeyPlace(key));
    }
    std::int32_t create_key(RegistryKey parent, const char* path, const char* class_name, std::uint32_t access,
                            const SecurityAttributes& attributes, RegistryKey& key) noexcept override {
        SECURITY_ATTRIBUTES security = {attributes.length, const_cast<void*>(attributes.descriptor),
                                        attributes.inherit_handle};
        return RegCreateKeyExA(key_of(parent), path, 0, const_cast<char*>(class_name), REG_OPTION_NON_VOLATILE, access,
                               &security, KeyPlace(key), nullptr);
    }
    std::int32_t close_key(RegistryKey key) noexcept override { return RegCloseKey(key_of(key)); }
    std::int32_t delete_key(RegistryKey parent, const char* path) noexcept override {
        return RegDeleteKeyA(key_of(parent), path);
    }
    std::int32_t delete_value(RegistryKey key, const char* name) noexcept override {
        return RegDeleteValueA(key_of(key), name);
    }
    std::int32_t enum_key(RegistryKey key, std::uint32_t index, char* name,
                          std::uint32_t& name_length) noexcept override {
        return RegEnumKeyExA(key_of(key), index, name, dword(name_length), nullptr, nullptr, nullptr, nullptr);
    }
    std::int32_t enum_value(RegistryKey key, std::uint32_t index, char* name, std::uint32_t& name_length,
                            std::uint32_t& type, std::uint8_t* data, std::uint32_t& data_size) noexcept override {
        return RegEnumValueA(key_of(key), index, name, dword(name_length), nullptr, dword(type), data,
                             dword(data_size));
    }
    std::int32_t query_value(RegistryKey key, const char* name, std::uint32_t& type, std::uint8_t* data,
                             std::uint32_t& data_size) noexcept override {
        return RegQueryValueExA(key_of(key), name, nullptr, dword(type), data, dword(data_size));
    }
    std::int32_t set_value(RegistryKey key, const char* name, std::uint32_t type, const std::uint8_t* data,
                           std::uint32_t data_size) noexcept override {
        return RegSetValueExA(key_of(key), name, 0, type, data, data_size);
    }
    std::int32_t connect_registry(const char* computer, RegistryKey root, RegistryKey& key) noexcept override {
        return RegConnectRegistryA(computer, key_of(root), KeyPlace(key));
    }
    std::uint32_t expand_environment(const char* source, char* target, std::uint32_t capacity) noexcept override {
        return ExpandEnvironmentStringsA(source, target, capacity);
    }
};

}  // namespace

Registry& registry() {
    static SystemRegistry instance;
    return instance;
}

}  // namespace vex::platform
