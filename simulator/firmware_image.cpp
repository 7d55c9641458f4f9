// Firmware files as a display's boot program checks them before anything is written.
#include "simulator/firmware_image.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>
#include <vector>

#include "core/unicode.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

/// More than any board's memory; a file of that size was chosen by mistake.
constexpr std::uintmax_t kLargestImage = 64U << 20U;

/// A flash loader is written in these: where (two bytes), and what.
constexpr std::size_t kTriplet = 3;
constexpr unsigned char kToRegister = 0x80;
constexpr std::string_view kStart = "\x80\x24\x80";

/// What follows the type of a record: the length of its address and what it is for.
struct RecordType {
    enum class Use { header, data, count, terminator };
    char digit;
    std::size_t address_bytes;
    Use use;
};

using Use = RecordType::Use;

constexpr RecordType kRecordTypes[] = {
    {'0', 2, Use::header},     {'1', 2, Use::data},       {'2', 3, Use::data},
    {'3', 4, Use::data},       {'5', 2, Use::count},      {'6', 3, Use::count},
    {'7', 4, Use::terminator}, {'8', 3, Use::terminator}, {'9', 2, Use::terminator},
};

int hex_digit(char character) noexcept {
    if (character >= '0' && character <= '9') return character - '0';
    if (character >= 'A' && character <= 'F') return character - 'A' + 10;
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    return -1;
}

std::string hex_byte(unsigned value) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    return {kDigits[(value >> 4U) & 0xFU], kDigits[value & 0xFU]};
}

std::vector<std::uint8_t> read_hex(std::string_view digits) {
    if (digits.size() % 2 != 0) throw std::invalid_argument("odd number of digits");
    std::vector<std::uint8_t> bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = hex_digit(digits[i]);
        const int low = hex_digit(digits[i + 1]);
        if (high < 0 || low < 0) throw std::invalid_argument("a character is no hexadecimal digit");
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
    return bytes;
}

/// Checks records in their order.
class MotorolaCheck {
public:
    void line(std::string_view text) {
        if (terminated_) throw std::invalid_argument("record behind the terminator");
        const RecordType& type = type_of(text);
        const std::vector<std::uint8_t> bytes = read_hex(text.substr(2));
        // The count, which counts all that follows it: address, data and checksum.
        if (bytes.empty() || bytes.front() != bytes.size() - 1 || bytes.size() < 1 + type.address_bytes + 1) {
            throw std::invalid_argument("length is " + std::to_string(bytes.empty() ? 0 : bytes.front()) + ", but " +
                                        std::to_string(bytes.empty() ? 0 : bytes.size() - 1) + " bytes follow");
        }
        unsigned sum = 0;
        for (std::size_t i = 0; i + 1 < bytes.size(); ++i) sum += bytes[i];
        const unsigned expected = ~sum & 0xFFU;
        if (bytes.back() != expected) {
            throw std::invalid_argument("checksum is " + hex_byte(bytes.back()) + ", should be " + hex_byte(expected));
        }
        accept(type, bytes);
    }

    void end() const {
        if (records_ == 0) throw std::invalid_argument("no data records");
        if (!terminated_) throw std::invalid_argument("terminator is missing");
    }

private:
    static const RecordType& type_of(std::string_view text) {
        if (text.size() < 2 || text[0] != 'S') throw std::invalid_argument("no S-record");
        for (const RecordType& type : kRecordTypes) {
            if (type.digit == text[1]) return type;
        }
        throw std::invalid_argument("record type S" + std::string(1, text[1]) + " is unknown");
    }

    void accept(const RecordType& type, const std::vector<std::uint8_t>& bytes) {
        switch (type.use) {
            case Use::header:
                break;
            case Use::data:
                ++records_;
                break;
            case Use::count: {
                std::size_t told = 0;
                for (std::size_t i = 0; i < type.address_bytes; ++i) told = told * 256 + bytes[1 + i];
                if (told != records_) {
                    throw std::invalid_argument("record count is " + std::to_string(told) + ", but " +
                                                std::to_string(records_) + " data records stand before it");
                }
                break;
            }
            case Use::terminator:
                terminated_ = true;
                break;
        }
    }

    std::size_t records_ = 0;
    bool terminated_ = false;
};

std::string read_image(const std::filesystem::path& path, const std::u16string& shown) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error) throw ImageError(shown + u" is no file that can be read");
    if (size > kLargestImage) throw ImageError(shown + u" is too large for a display");
    try {
        return read_file(path);
    } catch (const TextError&) {
        throw ImageError(shown + u" cannot be read");
    }
}

std::u16string file_name(const std::u16string& path) {
    const std::size_t separator = path.find_last_of(u"\\/");
    return separator == path.npos ? path : path.substr(separator + 1);
}

Firmware firmware_of(std::string_view bytes, const std::u16string& shown) {
    return {file_name(shown), bytes.size(), crc32(bytes)};
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

ImageError::ImageError(std::u16string reason) : reason_(std::move(reason)), what_(to_utf8(reason_)) {}

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
        throw ImageError(shown + u", line " + from_utf8(std::to_string(number)) + u": " + from_utf8(error.what()));
    }
}

Firmware read_motorola_image(const std::filesystem::path& path, const std::u16string& shown) {
    const std::string bytes = read_image(path, shown);
    check_motorola_image(bytes, shown);
    return firmware_of(bytes, shown);
}

Firmware read_rabbit_image(const std::filesystem::path& path, const std::u16string& shown) {
    const std::string bytes = read_image(path, shown);
    if (bytes.empty()) throw ImageError(shown + u" is empty");
    return firmware_of(bytes, shown);
}

void read_loader_image(const std::filesystem::path& path, const std::u16string& shown) {
    check_loader_image(read_image(path, shown), shown);
}

void check_loader_image(std::string_view bytes, const std::u16string& shown) {
    const auto refuse = [&shown](std::size_t at) {
        throw ImageError(shown + u", byte " + from_utf8(std::to_string(at)) + u": no flash loader");
    };
    for (std::size_t at = 0; at < bytes.size(); at += kTriplet) {
        const std::string_view triplet = bytes.substr(at, kTriplet);
        const auto first = static_cast<unsigned char>(triplet.front());
        const bool last = at + kTriplet >= bytes.size();
        if (triplet.size() < kTriplet || first > kToRegister || (triplet == kStart) != last) refuse(at);
    }
    if (bytes.empty()) refuse(0);
}

std::string make_loader_image(LoaderKind kind) {
    constexpr char kDivider = '\xA9';
    constexpr char kControl = '\xC4';
    constexpr std::string_view kEcho{
        "\xD3\x3A\xC3\x00\xCB\x7F\x28\xF8\xD3\x3A\xC0\x00\xD3\x32\xC0\x00\x18\xEE", 18};
    const char prefix = static_cast<char>(kToRegister);
    std::string bytes{prefix, kDivider, kind == LoaderKind::line ? '\x2F' : '\x07', prefix, kControl, '\0'};
    for (std::size_t at = 0; at < kEcho.size(); ++at) bytes += {'\0', static_cast<char>(at), kEcho[at]};
    return bytes.append(kStart);
}

std::uint32_t crc32(std::string_view bytes) noexcept {
    static constexpr auto kTable = [] {
        constexpr std::uint32_t kPolynomial = 0xEDB88320U;
        std::array<std::uint32_t, 256> table{};
        for (std::uint32_t i = 0; i < table.size(); ++i) {
            std::uint32_t value = i;
            for (int bit = 0; bit < 8; ++bit) value = (value >> 1U) ^ ((value & 1U) != 0 ? kPolynomial : 0);
            table[i] = value;
        }
        return table;
    }();
    std::uint32_t value = ~0U;
    for (const char byte : bytes) value = (value >> 8U) ^ kTable[(value ^ static_cast<unsigned char>(byte)) & 0xFFU];
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
