// The registry access class on the side's registry, with an eye on what it asks for.
#pragma once

#include <algorithm>
#include <set>

#include "support/registry_routines.h"
#include "tests/registry/forwarding_registry.h"
#include "tests/registry/test_key.h"

namespace vex::test {

using namespace platform;

inline constexpr char16_t kComputer[] = u"\\\\elsewhere";

/// Notes what is asked of the registry, and reaches one more computer: this one, under another name.
class ObservedRegistry final : public ForwardingRegistry {
public:
    using ForwardingRegistry::ForwardingRegistry;

    std::int32_t open_key(RegistryKey parent, const char* path, std::uint32_t access,
                          RegistryKey& key) noexcept override {
        last_path = path;
        last_access = access;
        return opened(ForwardingRegistry::open_key(parent, path, access, key), key);
    }
    std::int32_t create_key(RegistryKey parent, const char* path, const char* class_name, std::uint32_t access,
                            const SecurityAttributes& attributes, RegistryKey& key) noexcept override {
        last_path = path;
        last_access = access;
        last_class = class_name;
        last_attributes = attributes;
        return opened(ForwardingRegistry::create_key(parent, path, class_name, access, attributes, key), key);
    }
    std::int32_t close_key(RegistryKey key) noexcept override {
        if (key == 0) ++null_closes;
        open_keys.erase(key);
        return ForwardingRegistry::close_key(key);
    }
    std::int32_t set_value(RegistryKey key, const char* name, std::uint32_t type, const std::uint8_t* data,
                           std::uint32_t data_size) noexcept override {
        ++writes;
        return ForwardingRegistry::set_value(key, name, type, data, data_size);
    }
    std::int32_t connect_registry(const char* computer, RegistryKey root, RegistryKey& key) noexcept override {
        if (side_code_page().from_ansi(computer) != kComputer) return kBadNetPath;
        return opened(ForwardingRegistry::open_key(root, "", kKeyAllAccess, key), key);
    }

    std::uint32_t expand_environment(const char* source, char* target, std::uint32_t capacity) noexcept override {
        const std::uint32_t length = ForwardingRegistry::expand_environment(source, target, capacity);
        // Systems leave there what they like.
        if (length > capacity) std::fill_n(target, capacity, '#');
        return length;
    }

    std::string last_path;
    std::uint32_t last_access = 0;
    std::string last_class = "none";
    SecurityAttributes last_attributes;
    std::set<RegistryKey> open_keys;
    int null_closes = 0;
    int writes = 0;

private:
    std::int32_t opened(std::int32_t result, const RegistryKey& key) {
        if (result == kSuccess) open_keys.insert(key);
        return result;
    }
};

class RegistryRoutinesFixture : public TestKeyFixture {
protected:
    RegistryRoutinesFixture() {
        routines.set_hKey(kHkeyCurrentUser);
        routines.set_KeyRoot(kWideTestPath);
        set_environment("VEX_SHORT", "s");
        set_environment("VEX_LONGER", "longer than it");
    }
    ~RegistryRoutinesFixture() override {
        for (const RegistryKey leaked : observed.open_keys) side_registry().close_key(leaked);
    }

    ObservedRegistry observed{side_registry()};
    RegistryRoutines routines{observed, side_code_page()};
};

}  // namespace vex::test
