// Firmware files as a display's boot program checks them before anything is written.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "simulator/units.h"

namespace vex::sim {

/// Why a file is no firmware: one line that begins with the file as its user named it.
class ImageError : public std::exception {
public:
    explicit ImageError(std::u16string reason);
    const std::u16string& reason() const noexcept { return reason_; }
    const char* what() const noexcept override { return what_.c_str(); }

private:
    std::u16string reason_;
    std::string what_;
};

/// Reads Motorola S-records and checks type, length and checksum of every line, that there is data, and that
/// a terminator ends it. `shown` is the path that the user knows. Raises `ImageError`.
Firmware read_motorola_image(const std::filesystem::path& path, const std::u16string& shown);
/// Reads a Rabbit image, which may hold anything but must hold something. Raises `ImageError`.
Firmware read_rabbit_image(const std::filesystem::path& path, const std::u16string& shown);

/// The checks alone. Raises `ImageError`.
void check_motorola_image(std::string_view bytes, const std::u16string& shown);

/// The checksum of Ethernet and zip files.
std::uint32_t crc32(std::string_view bytes) noexcept;

/// S-records of `size` data bytes that differ from size to size, with a header and a terminator.
std::string make_motorola_image(std::size_t size);

}  // namespace vex::sim
