// Firmware files as a display's boot program checks them before anything is written.
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "simulator/displays.h"

namespace vex::sim {

/// Why a file is no firmware: one line that begins with the file as its user named it.
class ImageError : public std::runtime_error {
public:
    using runtime_error::runtime_error;
};

/// Reads Motorola S-records and checks type, length and checksum of every line, that there is data, and that
/// a terminator ends it. `shown` is the path that the user knows. Raises `ImageError`.
Firmware read_motorola_image(const std::filesystem::path& path, const std::u16string& shown);
/// Reads a Rabbit image, which may hold anything but must hold something. Raises `ImageError`.
Firmware read_rabbit_image(const std::filesystem::path& path, const std::u16string& shown);

/// Checks a flash loader: what a Rabbit board's boot program takes, triplets that write a byte each, to memory or
/// (first byte 80) to a register; the last one, and no other, starts the program. Raises `ImageError`.
void read_loader_image(const std::filesystem::path& path, const std::u16string& shown);

/// The checks alone. Raise `ImageError`.
void check_motorola_image(std::string_view bytes, const std::u16string& shown);
void check_loader_image(std::string_view bytes, const std::u16string& shown);

/// The checksum of Ethernet and zip files.
std::uint32_t crc32(std::string_view bytes) noexcept;

/// S-records of `size` data bytes that differ from size to size, with a header and a terminator.
std::string make_motorola_image(std::size_t size);

/// How a flash loader is reached: on the board's own line, or through a device server, which is faster.
enum class LoaderKind { line, server };
/// A flash loader that sets up the board's serial port for its kind of line and echoes what comes.
std::string make_loader_image(LoaderKind kind);

}  // namespace vex::sim
