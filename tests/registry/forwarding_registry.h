// A registry that passes everything on, for tests to look at and to change what they need.
#pragma once

#include "platform/registry.h"

namespace vex::test {

class ForwardingRegistry : public platform::Registry {
public:
    /// `target` outlives the object.
    explicit ForwardingRegistry(platform::Registry& target) : target_(target) {}

    std::int32_t open_key(platform::RegistryKey parent, const char* path, std::uint32_t access,
                          platform::RegistryKey& key) noexcept override {
        return target_.open_key(parent, path, access, key);
    }
    std::int32_t create_key(platform::RegistryKey parent, const char* path, const char* class_name,
                            std::uint32_t access, const platform::SecurityAttributes& attributes,
                            platform::RegistryKey& key) noexcept override {
        return target_.create_key(parent, path, class_name, access, attributes, key);
    }
    std::int32_t close_key(platform::RegistryKey key) noexcept override { return target_.close_key(key); }
    std::int32_t delete_key(platform::RegistryKey parent, const char* path) noexcept override {
        return target_.delete_key(parent, path);
    }
    std::int32_t delete_value(platform::RegistryKey key, const char* name) noexcept override {
        return target_.delete_value(key, name);
    }
    std::int32_t enum_key(platform::RegistryKey key, std::uint32_t index, char* name,
                          std::uint32_t& name_length) noexcept override {
        return target_.enum_key(key, index, name, name_length);
    }
    std::int32_t enum_value(platform::RegistryKey key, std::uint32_t index, char* name, std::uint32_t& name_length,
                            std::uint32_t& type, std::uint8_t* data, std::uint32_t& data_size) noexcept override {
        return target_.enum_value(key, index, name, name_length, type, data, data_size);
    }
    std::int32_t query_value(platform::RegistryKey key, const char* name, std::uint32_t& type, std::uint8_t* data,
                             std::uint32_t& data_size) noexcept override {
        return target_.query_value(key, name, type, data, data_size);
    }
    std::int32_t set_value(platform::RegistryKey key, const char* name, std::uint32_t type, const std::uint8_t* data,
                           std::uint32_t data_size) noexcept override {
        return target_.set_value(key, name, type, data, data_size);
    }
    std::int32_t connect_registry(const char* computer, platform::RegistryKey root,
                                  platform::RegistryKey& key) noexcept override {
        return target_.connect_registry(computer, root, key);
    }
    std::uint32_t expand_environment(const char* source, char* target, std::uint32_t capacity) noexcept override {
        return target_.expand_environment(source, target, capacity);
    }

private:
    platform::Registry& target_;
};

}  // namespace vex::test
