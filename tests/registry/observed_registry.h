// The side's registry with an eye on what is asked of it. It reaches one more computer, this one under another name.
#pragma once

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/system.h"
#include "tests/registry/side.h"

namespace vex::test {

inline constexpr char16_t kComputer[] = u"\\\\elsewhere";

class ObservedRegistry final : public platform::Registry {
public:
    using Key = platform::RegistryKey;

    std::int32_t open_key(Key parent, const char* path, std::uint32_t access, Key& key) noexcept override {
        last_path = path;
        last_access = access;
        return opened(target_.open_key(parent, path, access, key), key);
    }
    std::int32_t create_key(Key parent, const char* path, const char* class_name, std::uint32_t access,
                            const platform::SecurityAttributes& attributes, Key& key) noexcept override {
        last_path = path;
        last_access = access;
        last_class = class_name;
        last_attributes = attributes;
        return opened(target_.create_key(parent, path, class_name, access, attributes, key), key);
    }
    std::int32_t close_key(Key key) noexcept override {
        if (open_keys.erase(key) == 0) stray_closes.push_back(key);
        return target_.close_key(key);
    }
    std::int32_t delete_key(Key parent, const char* path) noexcept override { return target_.delete_key(parent, path); }
    std::int32_t delete_value(Key key, const char* name) noexcept override { return target_.delete_value(key, name); }
    std::int32_t enum_key(Key key, std::uint32_t index, char* name, std::uint32_t& length) noexcept override {
        return target_.enum_key(key, index, name, length);
    }
    std::int32_t enum_value(Key key, std::uint32_t index, char* name, std::uint32_t& length, std::uint32_t& type,
                            std::uint8_t* data, std::uint32_t& size) noexcept override {
        return target_.enum_value(key, index, name, length, type, data, size);
    }
    std::int32_t query_value(Key key, const char* name, std::uint32_t& type, std::uint8_t* data,
                             std::uint32_t& size) noexcept override {
        return target_.query_value(key, name, type, data, size);
    }
    std::int32_t set_value(Key key, const char* name, std::uint32_t type, const std::uint8_t* data,
                           std::uint32_t size) noexcept override {
        ++writes;
        return target_.set_value(key, name, type, data, size);
    }
    std::int32_t connect_registry(const char* computer, Key root, Key& key) noexcept override {
        if (platform::from_ansi(computer) != kComputer) return platform::kBadNetPath;
        return opened(target_.open_key(root, "", platform::kKeyAllAccess, key), key);
    }
    std::uint32_t expand_environment(const char* source, char* target, std::uint32_t capacity) noexcept override {
        const std::uint32_t length = target_.expand_environment(source, target, capacity);
        // Systems leave there what they like.
        if (length > capacity) std::fill_n(target, capacity, '#');
        return length;
    }

    void close_all() {
        for (const Key leaked : std::exchange(open_keys, {})) target_.close_key(leaked);
    }

    std::string last_path, last_class = "none";
    std::uint32_t last_access = 0;
    platform::SecurityAttributes last_attributes;
    std::set<Key> open_keys;
    /// What was closed without having been opened.
    std::vector<Key> stray_closes;
    int writes = 0;

private:
    std::int32_t opened(std::int32_t result, const Key& key) {
        if (result == platform::kSuccess) open_keys.insert(key);
        return result;
    }

    platform::Registry& target_ = side_registry();
};

}  // namespace vex::test
