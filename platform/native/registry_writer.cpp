// Writing a registry as text.
#include <algorithm>
#include <optional>

#include "core/unicode.h"
#include "platform/native/registry_text.h"
#include "platform/registry.h"

namespace vex::platform::native {
namespace {

constexpr char kHexDigits[] = "0123456789abcdef";

void put_quoted(std::string& text, std::u16string_view content) {
    text += '"';
    for (const char c : to_utf8(content)) {
        switch (c) {
            case '\\':
                text += "\\\\";
                break;
            case '"':
                text += "\\\"";
                break;
            case '\n':
                text += "\\n";
                break;
            case '\r':
                text += "\\r";
                break;
            default:
                text += c;
        }
    }
    text += '"';
}

void put_hex(std::string& text, std::uint32_t number, int digits) {
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4) text += kHexDigits[(number >> shift) & 15];
}

/// The characters of a text value that can stand between quotation marks on one line: terminated by its one
/// null, without control characters, and nothing but whole characters.
std::optional<std::u16string> plain_text(const RegistryValue& value) {
    if (value.type != kRegSz || value.data.size() < 2 || value.data.size() % 2 != 0) return std::nullopt;
    std::u16string text;
    text.reserve(value.data.size() / 2);
    for (std::size_t i = 0; i < value.data.size(); i += 2) {
        text += static_cast<char16_t>(value.data[i] | value.data[i + 1] << 8);
    }
    if (text.back() != u'\0') return std::nullopt;
    text.pop_back();
    if (std::any_of(text.begin(), text.end(), [](char16_t c) { return c < u' '; })) return std::nullopt;
    const bool surrogates = std::any_of(text.begin(), text.end(), [](char16_t c) { return (c & 0xF800) == 0xD800; });
    if (surrogates && from_utf8(to_utf8(text)) != text) return std::nullopt;
    return text;
}

std::uint32_t dword(const std::vector<std::uint8_t>& bytes) {
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
           static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

}  // namespace

void RegistryWriter::append(const RegistryWriter& other) {
    text_ += other.text_;
    current_key_ = other.current_key_;
}

void RegistryWriter::key(std::u16string_view path) {
    if (equal_ignoring_case(path, current_key_)) return;
    current_key_ = path;
    text_ += "\n[" + to_utf8(path) + "]\n";
}

void RegistryWriter::key_deleted(std::u16string_view path) {
    current_key_.clear();
    text_ += "\n[-" + to_utf8(path) + "]\n";
}

void RegistryWriter::put_name(std::u16string_view name) {
    if (name.empty()) {
        text_ += '@';
    } else {
        put_quoted(text_, name);
    }
    text_ += '=';
}

void RegistryWriter::value(RegistryValue value) {
    put_name(value.name);
    if (const std::optional<std::u16string> text = plain_text(value)) {
        put_quoted(text_, *text);
    } else if (value.type == kRegDword && value.data.size() == 4) {
        text_ += "dword:";
        put_hex(text_, dword(value.data), 8);
    } else {
        text_ += "hex";
        if (value.type != kRegBinary) {
            text_ += '(';
            int digits = 1;
            while (digits < 8 && value.type >> (4 * digits) != 0) ++digits;
            put_hex(text_, value.type, digits);
            text_ += ')';
        }
        char separator = ':';
        if (value.data.empty()) text_ += separator;
        text_.reserve(text_.size() + value.data.size() * 3 + 1);
        for (const std::uint8_t byte : value.data) {
            text_ += separator;
            put_hex(text_, byte, 2);
            separator = ',';
        }
    }
    text_ += '\n';
}

void RegistryWriter::value_deleted(std::u16string_view name) {
    put_name(name);
    text_ += "-\n";
}

}  // namespace vex::platform::native
