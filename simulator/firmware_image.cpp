// Firmware files as a display's boot program checks them before anything is written.
#include "simulator/firmware_image.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>

#include "core/digits.h"
#include "core/unicode.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

/// A flash loader is written in these: where (two bytes), and what.
constexpr std::size_t kTriplet = 3;
constexpr unsigned char kToRegister = 0x80;
constexpr std::string_view kStart = "\x80\x24\x80";

std::string hex_byte(unsigned value) { return to_utf8(digits_of(value & 0xFFU, 16, 2)); }

/// The bytes that pairs of hexadecimal digits stand for. Raises `std::invalid_argument`.
std::string read_hex(std::string_view digits) {
    if (digits.size() % 2 != 0) throw std::invalid_argument("odd number of digits");
    std::string bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = hex_value(digits[i]);
        const int low = hex_value(digits[i + 1]);
        if (high < 0 || low < 0) throw std::invalid_argument("a character is no hexadecimal digit");
        bytes += static_cast<char>(high * 16 + low);
    }
    return bytes;
}

/// What all bytes of a record add up to, which its checksum makes up to FF.
unsigned sum_of(std::string_view bytes) {
    return std::accumulate(bytes.begin(), bytes.end(), 0U,
                           [](unsigned sum, char byte) { return sum + static_cast<unsigned char>(byte); });
}

/// The type of a record that is as it should be. Raises `std::invalid_argument`.
char check_record(std::string_view text) {
    // By the type's digit, 0 of one that is unknown.
    constexpr std::array<std::size_t, 10> kAddressBytes = {2, 2, 3, 4, 0, 2, 3, 4, 3, 2};
    if (text.size() < 2 || text[0] != 'S') throw std::invalid_argument("no S-record");
    const char type = text[1];
    const std::size_t address_bytes =
        type < '0' || type > '9' ? 0 : kAddressBytes.at(static_cast<std::size_t>(type - '0'));
    if (address_bytes == 0) throw std::invalid_argument("record type S" + std::string(1, type) + " is unknown");
    const std::string bytes = read_hex(text.substr(2));
    // The count, which counts all that follows it: address, data and checksum.
    const std::size_t count = bytes.empty() ? 0 : static_cast<unsigned char>(bytes.front());
    const std::size_t follow = bytes.empty() ? 0 : bytes.size() - 1;
    if (count != follow || follow < address_bytes + 1)
        throw std::invalid_argument("length is " + std::to_string(count) + ", but " + std::to_string(follow) +
                                    " bytes follow");
    const std::string found = hex_byte(static_cast<unsigned char>(bytes.back()));
    const std::string expected = hex_byte(~sum_of(std::string_view(bytes).substr(0, follow)));
    if (found != expected) throw std::invalid_argument("checksum is " + found + ", should be " + expected);
    return type;
}

/// Raises `ImageError`: what is said of the file.
[[noreturn]] void reject(const std::u16string& shown, const std::string& what) {
    throw ImageError(to_utf8(shown) + what);
}

std::uint32_t crc32(std::string_view bytes) noexcept {
    constexpr std::uint32_t kPolynomial = 0xEDB88320U;
    std::uint32_t value = ~0U;
    for (const char byte : bytes) {
        value ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) value = (value >> 1U) ^ ((value & 1U) != 0 ? kPolynomial : 0);
    }
    return ~value;
}

std::string record(char type, const std::string& address_and_data) {
    const std::string bytes = static_cast<char>(address_and_data.size() + 1) + address_and_data;
    std::string line = "S" + std::string(1, type);
    for (const char byte : bytes) line += hex_byte(static_cast<unsigned char>(byte));
    return line + hex_byte(~sum_of(bytes)) + "\r\n";
}

}  // namespace

std::string read_image(const std::filesystem::path& path, const std::u16string& shown) {
    std::string bytes;
    try {
        bytes = read_file(path);
    } catch (const TextError&) {
        reject(shown, " is no file that can be read");
    }
    if (bytes.empty()) reject(shown, " is empty");
    return bytes;
}

void check_motorola_image(std::string_view bytes, const std::u16string& shown) {
    bool data = false;
    bool ended = false;
    std::size_t number = 0;
    try {
        while (!bytes.empty()) {
            const std::size_t end = std::min(bytes.find('\n'), bytes.size());
            const std::string_view line = bytes.substr(0, end);
            bytes.remove_prefix(std::min(end + 1, bytes.size()));
            ++number;
            const std::string_view text = line.substr(0, line.find_last_not_of("\r ") + 1);
            if (text.empty()) continue;
            if (ended) throw std::invalid_argument("record behind the terminator");
            const char type = check_record(text);
            data = data || (type >= '1' && type <= '3');
            ended = type >= '7';
        }
        if (!data) throw std::invalid_argument("no data records");
        if (!ended) throw std::invalid_argument("terminator is missing");
    } catch (const std::invalid_argument& error) {
        reject(shown, ", line " + std::to_string(number) + ": " + error.what());
    }
}

void check_loader_image(std::string_view bytes, const std::u16string& shown) {
    for (std::size_t at = 0; at == 0 || at < bytes.size(); at += kTriplet) {
        const std::string_view triplet = bytes.substr(at, kTriplet);
        const bool last = at + kTriplet >= bytes.size();
        if (triplet.size() < kTriplet || static_cast<unsigned char>(triplet.front()) > kToRegister ||
            (triplet == kStart) != last)
            reject(shown, ", byte " + std::to_string(at) + ": no flash loader");
    }
}

std::u16string file_name(const std::u16string& path) { return path.substr(path.find_last_of(u"\\/") + 1); }

std::u16string describe_image(std::string_view bytes, const std::u16string& shown) {
    return as_word(file_name(shown)) + u", " + digits_of(bytes.size(), 10) + u" bytes, CRC-32 " +
           digits_of(crc32(bytes), 16, 8);
}

std::string make_motorola_image(std::size_t size) {
    constexpr std::size_t kBytesInRecord = 32;
    const auto address = [](std::size_t value) {
        return std::string{static_cast<char>(value >> 16U & 0xFFU), static_cast<char>(value >> 8U & 0xFFU),
                           static_cast<char>(value & 0xFFU)};
    };
    std::string text = record('0', std::string(2, '\0') + "sample");
    for (std::size_t at = 0; at < size; at += kBytesInRecord) {
        std::string data = address(at);
        for (std::size_t i = at; i < std::min(size, at + kBytesInRecord); ++i) {
            data += static_cast<char>((i * 7 + (i >> 8U) * 13 + size) & 0xFFU);
        }
        text += record('2', data);
    }
    return text + record('8', address(0));
}

std::string make_loader_image(bool for_device_server) {
    constexpr char kDivider = '\xA9';
    constexpr char kControl = '\xC4';
    const char prefix = static_cast<char>(kToRegister);
    return std::string{prefix, kDivider, for_device_server ? '\x17' : '\x2F', prefix, kControl, '\0'}.append(kStart);
}

}  // namespace vex::sim
