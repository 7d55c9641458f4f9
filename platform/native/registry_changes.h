// The vocabulary of a registry text: what it tells of keys and values, line by line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vex::platform::native {

/// A value as the registry keeps it: texts are UTF-16, little end first, with their terminating nulls.
struct RegistryValue {
    std::u16string name;
    std::uint32_t type = 0;
    std::vector<std::uint8_t> data;
};

/// What is told of a registry, in its order. Read from a text, written to one, or applied to a tree.
class RegistryChanges {
public:
    virtual ~RegistryChanges() = default;
    /// The key at `path`, which begins with the name of its root, exists. What follows is told of its values.
    virtual void key(std::u16string_view path) = 0;
    /// The key and everything below it does not exist. What follows is told of no key.
    virtual void key_deleted(std::u16string_view path) = 0;
    virtual void value(RegistryValue value) = 0;
    virtual void value_deleted(std::u16string_view name) = 0;
};

/// As on Windows. Deeper keys are neither created nor read.
constexpr std::size_t kMaxKeyDepth = 512;

/// The first name of a path, which is cut off it together with the separators around it; empty at its end.
std::u16string_view take_name(std::u16string_view& path);

}  // namespace vex::platform::native
