// Enumerating the sub-keys and the values of a key.
#include <algorithm>

#include "platform/system.h"
#include "support/open_registry_key.h"
#include "support/registry_routines.h"

namespace vex {
namespace {

/// Longer than any key name with its null.
constexpr std::uint32_t kNameSize = 260;
constexpr std::size_t kFirstDataSize = 4096;

}  // namespace

KeyedCollection<std::u16string> RegistryRoutines::EnumRegistryKeys(std::int32_t hKey, const std::u16string& KeyName) {
    KeyedCollection<std::u16string> names;
    OpenRegistryKey opened(registry_);
    platform::RegistryKey key = platform::registry_key(hKey);
    if (!KeyName.empty()) {
        if (opened.open(key, platform::to_ansi(KeyName), platform::kKeyRead) != platform::kSuccess) return names;
        key = opened.get();
    }
    for (std::uint32_t index = 0;; ++index) {
        char buffer[kNameSize] = {};
        std::uint32_t length = kNameSize;
        // Kept: only the end is looked for. Another failure yields the empty name, and its second time the
        // collection's refusal of a key twice.
        if (registry_.enum_key(key, index, buffer, length) == platform::kNoMoreItems) break;
        const std::u16string name = trimmed_at_null(platform::from_ansi({buffer, kNameSize}));
        names.add(name, name);
    }
    return names;
}

KeyedCollection<RegistryRoutines::NamedValue> RegistryRoutines::EnumRegistryValues(std::int32_t hKey,
                                                                                   const std::u16string& KeyName) {
    KeyedCollection<NamedValue> values;
    OpenRegistryKey opened(registry_);
    platform::RegistryKey key = platform::registry_key(hKey);
    if (!KeyName.empty()) {
        if (opened.open(key, platform::to_ansi(KeyName), platform::kKeyRead) != platform::kSuccess) return values;
        key = opened.get();
    }
    EnumeratedValues decoder(registry_);
    for (std::uint32_t index = 0;; ++index) {
        char buffer[kNameSize] = {};
        std::uint32_t length = kNameSize;
        RegistryData data;
        data.buffer.resize(kFirstDataSize);
        data.size = kFirstDataSize;
        std::int32_t result =
            registry_.enum_value(key, index, buffer, length, data.type, data.buffer.data(), data.size);
        if (result == platform::kMoreData) {
            data.buffer.resize(data.size);
            length = kNameSize;
            result = registry_.enum_value(key, index, buffer, length, data.type, data.buffer.data(), data.size);
        }
        if (result != platform::kSuccess) break;
        const std::u16string name = platform::from_ansi({buffer, std::min(length, kNameSize)});
        values.add({name, decoder.next(std::move(data))}, name);
    }
    return values;
}

}  // namespace vex
