// Registry values as scenarios write and show them, and registry exports, over the registry seam.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/registry.h"

namespace vex::sim {

/// A place in the registry: a root and the path below it.
struct RegistryPath {
    std::int32_t root = platform::kHkeyLocalMachine;
    std::u16string key;
};

/// Reads "ROOT\KEY" with a root of HKLM, HKCU or HKCR. Raises `std::invalid_argument`.
RegistryPath parse_registry_path(std::u16string_view text);

// Writing makes the missing keys, and raises `std::runtime_error` with the registry's result code when it refuses.

/// TYPE: sz, expand_sz or dword (decimal). Raises `std::invalid_argument` for another type, or a text that is no value
/// of it.
void write_registry(const RegistryPath& path, std::u16string_view name, std::u16string_view type,
                    std::u16string_view text);
/// Merges an export. Raises `TextError`; `file`: how messages name the export.
void import_registry(const std::string& file, std::string_view bytes);

/// What the registry shows in place of a value that is not there.
inline constexpr char16_t kNoValue[] = u"(none)";
/// The text of a value, a number in decimal, the bytes of any other type in hexadecimal; `kNoValue`.
std::u16string show_registry(const RegistryPath& path, std::u16string_view name);

}  // namespace vex::sim
