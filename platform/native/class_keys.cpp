// The native side: the simulated computer's registry, which holds what its code page can.
#include "platform/class_keys.h"

#include <array>

#include "platform/registry.h"
#include "platform/system.h"

namespace vex::platform {
namespace {

constexpr RegistryKey kClasses = registry_key(kHkeyClassesRoot);

/// Whether an open key holds neither keys nor values.
bool is_empty(RegistryKey key) {
    std::array<char, 260> name{};
    auto length = static_cast<std::uint32_t>(name.size());
    if (registry().enum_key(key, 0, name.data(), length) != kNoMoreItems) return false;
    std::uint32_t type = kRegNone;
    std::uint32_t size = 0;
    return registry().enum_value(key, 0, name.data(), length, type, nullptr, size) == kNoMoreItems;
}

}  // namespace

bool write_class_text(const std::u16string& key, const std::u16string& name, const std::u16string& text) {
    const std::string bytes = to_ansi(text);
    if (from_ansi(bytes) != text) return false;
    const std::string value = to_ansi(name);
    RegistryKey handle = 0;
    if (registry().create_key(kClasses, to_ansi(key).c_str(), "", kKeyWrite, {}, handle) != kSuccess) return false;
    const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.c_str());
    const auto size = static_cast<std::uint32_t>(bytes.size() + 1);
    const bool written = registry().set_value(handle, value.c_str(), kRegSz, data, size) == kSuccess;
    registry().close_key(handle);
    return written;
}

bool remove_class_text(const std::u16string& key, const std::u16string& name) {
    const std::string value = to_ansi(name);
    RegistryKey handle = 0;
    std::int32_t result = registry().open_key(kClasses, to_ansi(key).c_str(), kKeyWrite, handle);
    if (result == kSuccess) {
        result = registry().delete_value(handle, value.c_str());
        registry().close_key(handle);
    }
    return result == kSuccess || result == kFileNotFound;
}

void remove_empty_class_key(const std::u16string& key) {
    RegistryKey handle = 0;
    if (registry().open_key(kClasses, to_ansi(key).c_str(), kKeyRead, handle) != kSuccess) return;
    const bool empty = is_empty(handle);
    registry().close_key(handle);
    if (empty) registry().delete_key(kClasses, to_ansi(key).c_str());
}

}  // namespace vex::platform
