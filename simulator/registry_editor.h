// Registry values as scenarios write and show them, over the registry seam.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/code_page.h"
#include "platform/registry.h"

namespace vex::sim {

/// A place in the registry: a root and the path below it.
struct RegistryPath {
    std::int32_t root = 0;
    std::u16string key;
};

/// Reads "ROOT\KEY" with a root of HKLM, HKCU or HKCR. Raises `std::invalid_argument`.
RegistryPath parse_registry_path(std::u16string_view text);
/// Whether a word begins like such a path.
bool is_registry_path(std::u16string_view text) noexcept;

/// A value's type and bytes.
struct RegistryValue {
    std::uint32_t type = 0;
    std::vector<std::uint8_t> bytes;
};

class RegistryEditor {
public:
    RegistryEditor(platform::Registry& registry, const platform::CodePage& code_page) noexcept
        : registry_(registry), code_page_(code_page) {}

    /// The bytes of a value: TYPE sz, expand_sz, multi_sz ("\0" between), dword (decimal), binary (hex).
    /// Raises `std::invalid_argument` for another type, or a text that is no value of it.
    RegistryValue parse(std::u16string_view type, std::u16string_view text) const;
    /// The text of a value, the other way round. Values of other types are shown as bytes.
    std::u16string show(const RegistryValue& value) const;

    /// Makes the missing keys. Raises `std::runtime_error` with the registry's result code when it refuses.
    void write(std::int32_t root, std::u16string_view key, std::u16string_view name, const RegistryValue& value);
    void write_text(std::int32_t root, std::u16string_view key, std::u16string_view name, std::u16string_view text);
    /// Nothing where the key or the value is missing.
    std::optional<RegistryValue> read(std::int32_t root, std::u16string_view key, std::u16string_view name) const;

private:
    platform::Registry& registry_;
    const platform::CodePage& code_page_;
};

using platform::kHkeyClassesRoot;
using platform::kHkeyLocalMachine;

}  // namespace vex::sim
