// Firmware files as a display's boot program checks them before anything is written.
#include "simulator/firmware_image.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <system_error>
#include <utility>
#include <vector>

#include "core/digits.h"
#include "core/unicode.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

/// More than any board's memory; a file of that size was chosen by mistake.
constexpr std::uintmax_t kLargestFile = 64U << 20U;

/// A flash loader is written in these: where (two bytes), and what.
constexpr std::size_t kTriplet = 3;
constexpr unsigned char kToRegister = 0x80;
constexpr std::string_view kStart = "\x80\x24\x80";

/// Of the types of records, by their digit: the length of the address, 0 of a type that is unknown.
constexpr std::array<std::size_t, 10> kAddressBytes = {2, 2, 3, 4, 0, 2, 3, 4, 3, 2};
constexpr std::string_view kDataTypes = "123";
constexpr std::string_view kCountTypes = "56";
constexpr std::string_view kTerminatorTypes = "789";

std::string hex_byte(unsigned value) { return to_utf8(digits_of(value & 0xFFU, 16, 2)); }

/// Checks records in their order.
class MotorolaCheck {
public:
    void line(std::string_view text) {
        if (terminated_) throw std::invalid_argument("record behind the terminator");
        if (text.size() < 2 || text[0] != 'S') throw std::invalid_argument("no S-record");
        const char type = text[1];
        const std::size_t address_bytes =
            type < '0' || type > '9' ? 0 : kAddressBytes.at(static_cast<std::size_t>(type - '0'));
        if (address_bytes == 0) throw std::invalid_argument("record type S" + std::string(1, type) + " is unknown");
        const std::vector<std::uint8_t> bytes = read_hex<std::vector<std::uint8_t>>(text.substr(2));
        // The count, which counts all that follows it: address, data and checksum.
        const std::size_t count = bytes.empty() ? 0 : bytes.front();
        const std::size_t follow = bytes.empty() ? 0 : bytes.size() - 1;
        if (bytes.empty() || count != follow || follow < address_bytes + 1) {
            throw std::invalid_argument("length is " + std::to_string(count) + ", but " + std::to_string(follow) +
                                        " bytes follow");
        }
        const unsigned expected = ~std::accumulate(bytes.begin(), bytes.end() - 1, 0U) & 0xFFU;
        if (bytes.back() != expected)
            throw std::invalid_argument("checksum is " + hex_byte(bytes.back()) + ", should be " + hex_byte(expected));
        if (kDataTypes.find(type) != kDataTypes.npos) ++records_;
        terminated_ = kTerminatorTypes.find(type) != kTerminatorTypes.npos;
        if (kCountTypes.find(type) == kCountTypes.npos) return;
        std::size_t told = 0;
        for (std::size_t i = 1; i <= address_bytes; ++i) told = told * 256 + bytes[i];
        if (told == records_) return;
        throw std::invalid_argument("record count is " + std::to_string(told) + ", but " + std::to_string(records_) +
                                    " data records stand before it");
    }

    void end() const {
        if (records_ == 0) throw std::invalid_argument("no data records");
        if (!terminated_) throw std::invalid_argument("terminator is missing");
    }

private:
    std::size_t records_ = 0;
    bool terminated_ = false;
};

/// Raises `ImageError`: what is said of the file.
[[noreturn]] void reject(const std::u16string& shown, const std::string& what) {
    throw ImageError(to_utf8(shown) + what);
}

std::string read_image(const std::filesystem::path& path, const std::u16string& shown) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error) reject(shown, " is no file that can be read");
    if (size > kLargestFile) reject(shown, " is too large for a display");
    try {
        return read_file(path);
    } catch (const TextError&) {
        reject(shown, " cannot be read");
    }
}

Firmware firmware_of(std::string_view bytes, const std::u16string& shown) {
    return {shown.substr(shown.find_last_of(u"\\/") + 1), bytes.size(), crc32(bytes)};
}

std::string record(char type, std::string_view address_and_data) {
    auto sum = static_cast<unsigned>(address_and_data.size() + 1);
    std::string line = "S" + std::string(1, type) + hex_byte(sum);
    for (const char byte : address_and_data) {
        line += hex_byte(static_cast<unsigned char>(byte));
        sum += static_cast<unsigned char>(byte);
    }
    return line + hex_byte(~sum) + "\r\n";
}

}  // namespace

void check_motorola_image(std::string_view bytes, const std::u16string& shown) {
    MotorolaCheck check;
    std::size_t number = 0;
    try {
        while (!bytes.empty()) {
            const std::size_t end = std::min(bytes.find('\n'), bytes.size());
            std::string_view text = bytes.substr(0, end);
            bytes.remove_prefix(std::min(end + 1, bytes.size()));
            ++number;
            while (!text.empty() && (text.back() == '\r' || text.back() == ' ')) text.remove_suffix(1);
            if (!text.empty()) check.line(text);
        }
        check.end();
    } catch (const std::invalid_argument& error) {
        reject(shown, ", line " + std::to_string(number) + ": " + error.what());
    }
}

Firmware read_motorola_image(const std::filesystem::path& path, const std::u16string& shown) {
    const std::string bytes = read_image(path, shown);
    check_motorola_image(bytes, shown);
    return firmware_of(bytes, shown);
}

Firmware read_rabbit_image(const std::filesystem::path& path, const std::u16string& shown) {
    const std::string bytes = read_image(path, shown);
    if (bytes.empty()) reject(shown, " is empty");
    return firmware_of(bytes, shown);
}

void read_loader_image(const std::filesystem::path& path, const std::u16string& shown) {
    check_loader_image(read_image(path, shown), shown);
}

void check_loader_image(std::string_view bytes, const std::u16string& shown) {
    for (std::size_t at = 0; at < bytes.size(); at += kTriplet) {
        const std::string_view triplet = bytes.substr(at, kTriplet);
        const auto first = static_cast<unsigned char>(triplet.front());
        const bool last = at + kTriplet >= bytes.size();
        if (triplet.size() < kTriplet || first > kToRegister || (triplet == kStart) != last)
            reject(shown, ", byte " + std::to_string(at) + ": no flash loader");
    }
    if (bytes.empty()) reject(shown, ", byte 0: no flash loader");
}

std::string make_loader_image(LoaderKind kind) {
    constexpr char kDivider = '\xA9';
    constexpr char kControl = '\xC4';
    constexpr std::string_view kEcho{"\xD3\x3A\xC3\x00\xCB\x7F\x28\xF8\xD3\x3A\xC0\x00\xD3\x32\xC0\x00\x18\xEE", 18};
    const char prefix = static_cast<char>(kToRegister);
    std::string bytes{prefix, kDivider, kind == LoaderKind::line ? '\x2F' : '\x07', prefix, kControl, '\0'};
    for (std::size_t at = 0; at < kEcho.size(); ++at) bytes += {'\0', static_cast<char>(at), kEcho[at]};
    return bytes.append(kStart);
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

}  // namespace vex::sim
