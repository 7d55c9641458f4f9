// A registry key that is closed when it goes out of scope.
#pragma once

#include <string>

#include "platform/registry.h"

namespace vex {

class OpenRegistryKey {
public:
    explicit OpenRegistryKey(platform::Registry& registry) noexcept : registry_(registry) {}
    OpenRegistryKey(const OpenRegistryKey&) = delete;
    OpenRegistryKey& operator=(const OpenRegistryKey&) = delete;
    ~OpenRegistryKey() {
        if (key_ != 0) registry_.close_key(key_);
    }

    /// Answers the system's result code; the handle stays null when it fails.
    std::int32_t open(platform::RegistryKey parent, const std::string& path, std::uint32_t access) noexcept {
        return registry_.open_key(parent, path.c_str(), access, key_);
    }
    /// Where an operation leaves the handle that is to be owned.
    platform::RegistryKey& receive() noexcept { return key_; }
    platform::RegistryKey get() const noexcept { return key_; }

private:
    platform::Registry& registry_;
    platform::RegistryKey key_ = 0;
};

}  // namespace vex
