// Firmware files as a display's boot program checks them before anything is written.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vex::sim {

/// Why a file is no firmware: one line that begins with the file as its user named it.
class ImageError : public std::runtime_error {
public:
    using runtime_error::runtime_error;
};

// `shown` is the path that the user knows. All raise `ImageError`.

/// A whole file, which must hold something.
std::string read_image(const std::filesystem::path& path, const std::u16string& shown);
/// Motorola S-records: type, length and checksum of every line; there must be data, and a terminator that ends it.
void check_motorola_image(std::string_view bytes, const std::u16string& shown);
/// A flash loader, what a Rabbit board's boot program takes: triplets that write a byte each, to memory or (first byte
/// 80) to a register; the last one, and no other, starts the program.
void check_loader_image(std::string_view bytes, const std::u16string& shown);

std::u16string file_name(const std::u16string& path);
/// A firmware file by its name, size and checksum (of Ethernet and zip files, CRC-32): who compares the three can tell
/// which file it was.
std::u16string describe_image(std::string_view bytes, const std::u16string& shown);

/// S-records of `size` data bytes that differ from size to size, with a header and a terminator.
std::string make_motorola_image(std::size_t size);
/// A flash loader that sets up the board's serial port for the rate of a cable, or of a device server.
std::string make_loader_image(bool for_device_server = false);

}  // namespace vex::sim
