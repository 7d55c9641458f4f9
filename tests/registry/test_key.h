// The key below which the contract tests work, and raw access to it.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/registry/side.h"

namespace vex::test {

using Bytes = std::vector<std::uint8_t>;

inline constexpr char kTestPath[] = "Software\\vexFirmwarePluginTests";
inline constexpr char16_t kWideTestPath[] = u"Software\\vexFirmwarePluginTests";

/// The bytes of a text, without a null unless it holds one.
inline Bytes bytes_of(std::string_view text) { return {text.begin(), text.end()}; }

/// An open key of the side's registry.
class Key {
public:
    explicit Key(platform::RegistryKey key) : key_(key) {}
    Key(Key&& other) noexcept : key_(std::exchange(other.key_, 0)) {}
    Key& operator=(Key&&) = delete;
    ~Key() { close(); }

    static Key created(platform::RegistryKey parent, const std::string& path) {
        constexpr std::uint32_t kAll = platform::kKeyAllAccess;
        platform::RegistryKey key = 0;
        EXPECT_EQ(side_registry().create_key(parent, path.c_str(), nullptr, kAll, {}, key), platform::kSuccess) << path;
        return Key(key);
    }
    /// A null key when it does not open.
    static Key opened(platform::RegistryKey parent, const std::string& path,
                      std::uint32_t access = platform::kKeyAllAccess) {
        platform::RegistryKey key = 0;
        side_registry().open_key(parent, path.c_str(), access, key);
        return Key(key);
    }

    platform::RegistryKey get() const { return key_; }
    explicit operator bool() const { return key_ != 0; }
    void close() {
        if (key_ != 0) side_registry().close_key(std::exchange(key_, 0));
    }

    void set(const char* name, std::uint32_t type, Bytes data) const {
        const auto size = static_cast<std::uint32_t>(data.size());
        // Windows counts a null that follows a text in memory as the text's own.
        data.push_back('!');
        EXPECT_EQ(side_registry().set_value(key_, name, type, data.data(), size), platform::kSuccess) << name;
    }
    void set_text(const char* name, std::string_view text) const {
        Bytes data = bytes_of(text);
        data.push_back(0);
        set(name, platform::kRegSz, std::move(data));
    }

    /// Type and data of a value; the type is ~0 when there is none.
    std::pair<std::uint32_t, Bytes> get(const char* name) const {
        std::uint32_t type = 0;
        std::uint32_t size = 0;
        if (side_registry().query_value(key_, name, type, nullptr, size) != platform::kSuccess) return {~0U, {}};
        Bytes data(size + 1);
        EXPECT_EQ(side_registry().query_value(key_, name, type, data.data(), size), platform::kSuccess) << name;
        data.resize(size);
        return {type, data};
    }

    std::vector<std::string> subkeys() const {
        std::vector<std::string> names;
        for (std::uint32_t index = 0;; ++index) {
            char name[260];
            std::uint32_t length = sizeof name;
            if (side_registry().enum_key(key_, index, name, length) != platform::kSuccess) return names;
            names.emplace_back(name, length);
        }
    }

private:
    platform::RegistryKey key_;
};

/// Deletes a key and everything below it.
inline void delete_tree(platform::RegistryKey parent, const std::string& path) {
    if (const Key key = Key::opened(parent, path)) {
        for (const std::string& subkey : key.subkeys()) delete_tree(key.get(), subkey);
    }
    side_registry().delete_key(parent, path.c_str());
}

/// Starts and ends without the test key; `key` is it.
class TestKeyFixture : public ::testing::Test {
protected:
    TestKeyFixture() : key(fresh()) {}
    ~TestKeyFixture() override {
        key.close();
        delete_tree(root, kTestPath);
    }

    static Key fresh() {
        delete_tree(root, kTestPath);
        return Key::created(root, kTestPath);
    }

    static constexpr platform::RegistryKey root = platform::registry_key(platform::kHkeyCurrentUser);
    Key key;
};

}  // namespace vex::test
