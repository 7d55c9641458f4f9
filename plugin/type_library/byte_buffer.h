// Bytes in the order of the type library format: little-endian numbers, one behind the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "com/com.h"

namespace vex::type_library {

class ByteBuffer {
public:
    std::uint32_t size() const noexcept { return static_cast<std::uint32_t>(bytes_.size()); }
    const std::vector<std::uint8_t>& bytes() const noexcept { return bytes_; }

    void put8(std::uint32_t value) { bytes_.push_back(static_cast<std::uint8_t>(value)); }
    void put16(std::uint32_t value) {
        put8(value);
        put8(value >> 8);
    }
    void put32(std::uint32_t value) {
        put16(value);
        put16(value >> 16);
    }
    void put(std::string_view text) {
        for (const char character : text) put8(static_cast<unsigned char>(character));
    }
    void put(REFGUID guid) {
        put32(guid.Data1);
        put16(guid.Data2);
        put16(guid.Data3);
        for (const std::uint8_t byte : guid.Data4) put8(byte);
    }
    void put(const ByteBuffer& other) { bytes_.insert(bytes_.end(), other.bytes_.begin(), other.bytes_.end()); }
    /// Fills up to a whole number of 32-bit words, with the letter that the standard writer takes.
    void align() {
        while (size() % 4 != 0) put8('W');
    }

    std::uint32_t get32(std::uint32_t at) const {
        return bytes_.at(at) | std::uint32_t{bytes_.at(at + 1)} << 8 | std::uint32_t{bytes_.at(at + 2)} << 16 |
               std::uint32_t{bytes_.at(at + 3)} << 24;
    }
    void set32(std::uint32_t at, std::uint32_t value) {
        for (std::uint32_t i = 0; i < 4; ++i) bytes_.at(at + i) = static_cast<std::uint8_t>(value >> (8 * i));
    }

private:
    std::vector<std::uint8_t> bytes_;
};

}  // namespace vex::type_library
