// Registry values as scenarios write and show them, and registry exports, over the registry seam.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/registry.h"
#include "platform/system.h"
#include "simulator/host.h"

namespace vex::sim {

/// A place in the registry: a root and the path below it.
struct RegistryPath {
    std::int32_t root = platform::kHkeyLocalMachine;
    std::u16string key;
};

/// Reads "ROOT\KEY" with a root of HKLM, HKCU or HKCR. Raises `std::invalid_argument`.
RegistryPath parse_registry_path(std::u16string_view text);
/// Whether a word begins like such a path.
bool is_registry_path(std::u16string_view text) noexcept;

/// Writing makes the missing keys, and raises `std::runtime_error` with the registry's result code when it refuses.
class RegistryEditor {
public:
    /// TYPE: sz, expand_sz, multi_sz ("\0" between), dword (decimal), binary (hex). Raises `std::invalid_argument` for
    /// another type, or a text that is no value of it.
    void write(const RegistryPath& path, std::u16string_view name, std::u16string_view type, std::u16string_view text);
    /// The text of a value, the other way round, or "(none)". Values of other types are shown as bytes.
    std::u16string show(const RegistryPath& path, std::u16string_view name) const;
    /// Merges an export into the registry. Raises `TextError`; `file`: how messages name the export.
    void import(const std::string& file, std::string_view bytes);

private:
    using Change = std::function<std::int32_t(platform::RegistryKey key)>;

    void change(const RegistryPath& path, const Change& work);
    std::int32_t set(platform::RegistryKey key, std::u16string_view name, std::uint32_t type, std::string_view data);
    std::string narrow(std::u16string_view text) const { return platform::to_ansi(text); }

    platform::Registry& registry_ = platform::registry();
};

}  // namespace vex::sim
