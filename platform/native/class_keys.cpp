// The native side: the simulated computer's registry, which holds what its code page can.
#include "platform/class_keys.h"

#include "platform/registry.h"
#include "platform/system.h"

namespace vex::platform {

constexpr RegistryKey kClasses = registry_key(kHkeyClassesRoot);

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
    const std::string path = to_ansi(key);
    RegistryKey handle = 0;
    if (registry().open_key(kClasses, path.c_str(), kKeyRead, handle) != kSuccess) return;
    char name[1];
    std::uint32_t length = sizeof name;
    std::uint32_t type = kRegNone;
    std::uint32_t size = 0;
    const std::int32_t first_value = registry().enum_value(handle, 0, name, length, type, nullptr, size);
    registry().close_key(handle);
    // One that holds keys is refused.
    if (first_value == kNoMoreItems) registry().delete_key(kClasses, path.c_str());
}

}  // namespace vex::platform
