// The icons with numbers, where the system has no resources: the build puts them into the library's data.
#pragma once

#include <cstdint>
#include <span>

namespace vex::plugin {

struct EmbeddedIcon {
    std::int16_t id;
    /// The content of the icon file.
    std::span<const std::uint8_t> file;
};

extern const std::span<const EmbeddedIcon> kEmbeddedIcons;

}  // namespace vex::plugin
