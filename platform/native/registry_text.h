// A registry as text, in the format in which Windows exports it. Knows no system: the simulated host reads exports
// with it on every one.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace vex::platform::native {

/// A value as the registry keeps it: texts are UTF-16, little end first, with their terminating nulls.
struct RegistryValue {
    std::uint32_t type = kRegNone;
    std::vector<std::uint8_t> data;

    friend bool operator==(const RegistryValue&, const RegistryValue&) = default;
};

bool is_string(std::uint32_t type) noexcept;
std::u16string text_of(const std::vector<std::uint8_t>& data);
std::vector<std::uint8_t> data_of(std::u16string_view text);

/// What a text says of a key, from the key's line to the next key's.
struct RegistrySection {
    struct Entry {
        std::u16string name;
        /// Nothing: there is no value of that name.
        std::optional<RegistryValue> value;
    };

    std::size_t line = 0;
    /// Begins with the name of a root. Whether there is such a root, and can be such a key, is not looked at.
    std::u16string path;
    /// The key and everything below it does not exist.
    bool deleted = false;
    std::vector<Entry> entries;
};

/// A text that is not what it should be: what() says what is expected. `line` counts from 1.
class RegistryDamage : public std::runtime_error {
public:
    RegistryDamage(std::size_t line, const std::string& reason) : std::runtime_error(reason), line_(line) {}
    std::size_t line() const noexcept { return line_; }

private:
    std::size_t line_;
};

/// The first line of every registry text, with its line break.
inline constexpr std::string_view kRegistryHeader = "Windows Registry Editor Version 5.00\n";

/// Reads a whole text, in UTF-8 or as Windows exports it in UTF-16, with either kind of line breaks and also without
/// the last one. Later sections and entries win over earlier ones. Raises RegistryDamage.
std::vector<RegistrySection> read_registry(std::string_view bytes);

// Writing, in UTF-8: the header, and then each key before its values.

void append_key(std::string& text, std::u16string_view path);
void append_value(std::string& text, std::u16string_view name, const RegistryValue& value);

/// The first name of a key's path, which is cut off it together with the backslashes around it; empty at its end.
std::u16string_view take_name(std::u16string_view& path);

}  // namespace vex::platform::native
