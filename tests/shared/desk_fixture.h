// What a dialog needs of the outside, for tests of it alone: the test's key is HKEY_LOCAL_MACHINE.
#pragma once

#include <vector>

#include "forms/scripted_toolkit.h"
#include "support/services.h"
#include "tests/registry/forwarding_registry.h"
#include "tests/registry/test_key.h"

namespace vex::test {

/// Shows a key as HKEY_LOCAL_MACHINE and counts the keys that are open.
class LocalMachine final : public ForwardingRegistry {
public:
    explicit LocalMachine(platform::RegistryKey key) : ForwardingRegistry(side_registry()), key_(key) {}

    std::int32_t open_key(platform::RegistryKey parent, const char* path, std::uint32_t access,
                          platform::RegistryKey& key) noexcept override {
        EXPECT_EQ(parent, platform::registry_key(platform::kHkeyLocalMachine));
        last_access = access;
        return counted(ForwardingRegistry::open_key(key_, path, access, key));
    }
    std::int32_t create_key(platform::RegistryKey parent, const char* path, const char* class_name,
                            std::uint32_t access, const platform::SecurityAttributes& attributes,
                            platform::RegistryKey& key) noexcept override {
        EXPECT_EQ(parent, platform::registry_key(platform::kHkeyLocalMachine));
        if (read_only) return platform::kAccessDenied;
        return counted(ForwardingRegistry::create_key(key_, path, class_name, access, attributes, key));
    }
    std::int32_t close_key(platform::RegistryKey key) noexcept override {
        --open_keys;
        return ForwardingRegistry::close_key(key);
    }

    std::uint32_t last_access = 0;
    int open_keys = 0;
    bool read_only = false;

private:
    std::int32_t counted(std::int32_t result) noexcept {
        if (result == platform::kSuccess) ++open_keys;
        return result;
    }

    platform::RegistryKey key_;
};

class StartedPrograms final : public platform::Processes {
public:
    bool start(const std::u16string& path) override {
        paths.push_back(path);
        return can_start;
    }
    std::vector<std::u16string> paths;
    bool can_start = true;
};

class OneFile final : public platform::Files {
public:
    bool ordinary_file_exists(const std::u16string& path) override { return path == existing; }
    std::u16string existing;
};

/// Reads the messages, and closes what opens.
class Reader final : public forms::ScriptedUser {
public:
    forms::MessageAnswer answer(const forms::MessageBox& box) override {
        messages.push_back(box);
        return forms::MessageAnswer::ok;
    }
    std::vector<forms::MessageBox> messages;
};

class DeskFixture : public TestKeyFixture {
protected:
    Reader user;
    forms::ScriptedToolkit toolkit{user};
    LocalMachine registry{key.get()};
    OneFile files;
    StartedPrograms programs;
    com::ModuleLifetime module;
    Services services{toolkit, registry, files, programs, side_code_page(), module, u"C:\\Host"};
};

}  // namespace vex::test
