// Registry values as scenarios write and show them.
#include "simulator/registry_editor.h"

#include <array>
#include <limits>
#include <stdexcept>

#include "core/narrow.h"
#include "core/unicode.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

struct Root {
    std::u16string_view name;
    std::int32_t handle;
};

constexpr std::array<Root, 3> kRoots = {{
    {u"HKLM", platform::kHkeyLocalMachine},
    {u"HKCU", platform::kHkeyCurrentUser},
    {u"HKCR", platform::kHkeyClassesRoot},
}};

struct Type {
    std::u16string_view name;
    std::uint32_t type;
};

constexpr std::array<Type, 5> kTypes = {{
    {u"sz", platform::kRegSz},
    {u"expand_sz", platform::kRegExpandSz},
    {u"multi_sz", platform::kRegMultiSz},
    {u"dword", platform::kRegDword},
    {u"binary", platform::kRegBinary},
}};

constexpr std::u16string_view kNullMark = u"\\0";

const Root* root_of(std::u16string_view text) noexcept {
    const std::u16string_view name = text.substr(0, text.find(u'\\'));
    for (const Root& root : kRoots) {
        if (name == root.name) return &root;
    }
    return nullptr;
}

std::vector<std::uint8_t> bytes_of(std::string_view text) { return {text.begin(), text.end()}; }

std::uint8_t hex_value(char16_t digit) {
    if (digit >= u'0' && digit <= u'9') return static_cast<std::uint8_t>(digit - u'0');
    const char16_t upper = to_upper(digit);
    if (upper >= u'A' && upper <= u'F') return static_cast<std::uint8_t>(upper - u'A' + 10);
    throw std::invalid_argument("a binary value is written in hexadecimal digits");
}

std::vector<std::uint8_t> parse_binary(std::u16string_view text) {
    if (text.size() % 2 != 0) throw std::invalid_argument("a binary value needs two digits for each byte");
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(hex_value(text[i]) * 16 + hex_value(text[i + 1])));
    }
    return bytes;
}

std::u16string show_binary(const std::vector<std::uint8_t>& bytes) {
    constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
    std::u16string text;
    for (const std::uint8_t byte : bytes) {
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 0xFU];
    }
    return text;
}

/// The operations take null-terminated texts.
std::string narrow(const platform::CodePage& code_page, std::u16string_view text) { return code_page.to_ansi(text); }

}  // namespace

RegistryPath parse_registry_path(std::u16string_view text) {
    const Root* root = root_of(text);
    const std::size_t separator = text.find(u'\\');
    if (root == nullptr || separator == text.npos || separator + 1 == text.size()) {
        throw std::invalid_argument("\"" + to_utf8(text) + "\" is no ROOT\\KEY with a root of HKLM, HKCU or HKCR");
    }
    return {root->handle, std::u16string(text.substr(separator + 1))};
}

bool is_registry_path(std::u16string_view text) noexcept {
    return text.find(u'\\') != text.npos && root_of(text) != nullptr;
}

RegistryValue RegistryEditor::parse(std::u16string_view type, std::u16string_view text) const {
    std::string names;
    for (const Type& entry : kTypes) {
        names += (names.empty() ? "" : ", ") + to_utf8(entry.name);
        if (entry.name != type) continue;
        RegistryValue value{entry.type, {}};
        switch (entry.type) {
            case platform::kRegDword: {
                const auto number = parse_number(text, 0, std::numeric_limits<std::uint32_t>::max());
                if (!number) throw std::invalid_argument("\"" + to_utf8(text) + "\" is no number of 32 bits");
                for (unsigned shift = 0; shift < 32; shift += 8) {
                    value.bytes.push_back(static_cast<std::uint8_t>(*number >> shift & 0xFF));
                }
                break;
            }
            case platform::kRegBinary:
                value.bytes = parse_binary(text);
                break;
            case platform::kRegMultiSz: {
                // Each text with its null, and one more that ends the list.
                std::u16string_view rest = text;
                std::string bytes;
                while (!rest.empty()) {
                    const std::size_t end = std::min(rest.find(kNullMark), rest.size());
                    bytes += narrow(code_page_, rest.substr(0, end)) + '\0';
                    rest.remove_prefix(std::min(end + kNullMark.size(), rest.size()));
                }
                value.bytes = bytes_of(bytes + '\0');
                break;
            }
            default:
                value.bytes = bytes_of(narrow(code_page_, text) + '\0');
                break;
        }
        return value;
    }
    throw std::invalid_argument("\"" + to_utf8(type) + "\" is none of " + names);
}

std::u16string RegistryEditor::show(const RegistryValue& value) const {
    std::string text(value.bytes.begin(), value.bytes.end());
    switch (value.type) {
        case platform::kRegSz:
        case platform::kRegExpandSz:
            return code_page_.from_ansi(text.substr(0, text.find('\0')));
        case platform::kRegMultiSz: {
            while (!text.empty() && text.back() == '\0') text.pop_back();
            std::u16string shown;
            for (const char16_t character : code_page_.from_ansi(text)) {
                character == u'\0' ? shown.append(kNullMark) : shown.append(1, character);
            }
            return shown;
        }
        case platform::kRegDword:
            if (value.bytes.size() == 4) {
                std::uint32_t number = 0;
                for (std::size_t i = 4; i-- > 0;) number = number << 8U | value.bytes[i];
                return from_utf8(std::to_string(number));
            }
            break;
        default:
            break;
    }
    return show_binary(value.bytes);
}

void RegistryEditor::write(std::int32_t root, std::u16string_view key, std::u16string_view name,
                          const RegistryValue& value) {
    platform::RegistryKey handle = 0;
    std::int32_t result = registry_.create_key(platform::registry_key(root), narrow(code_page_, key).c_str(), "",
                                               platform::kKeyWrite, {}, handle);
    if (result == platform::kSuccess) {
        result = registry_.set_value(handle, narrow(code_page_, name).c_str(), value.type, value.bytes.data(),
                                     narrowed<std::uint32_t>(value.bytes.size()));
        registry_.close_key(handle);
    }
    if (result != platform::kSuccess) {
        throw std::runtime_error("the registry refuses " + to_utf8(key) + " (result " + std::to_string(result) + ")");
    }
}

void RegistryEditor::write_text(std::int32_t root, std::u16string_view key, std::u16string_view name,
                               std::u16string_view text) {
    write(root, key, name, parse(u"sz", text));
}

std::optional<RegistryValue> RegistryEditor::read(std::int32_t root, std::u16string_view key,
                                                 std::u16string_view name) const {
    platform::RegistryKey handle = 0;
    if (registry_.open_key(platform::registry_key(root), narrow(code_page_, key).c_str(), platform::kKeyRead, handle) !=
        platform::kSuccess) {
        return std::nullopt;
    }
    RegistryValue value;
    std::uint32_t size = 0;
    const std::string value_name = narrow(code_page_, name);
    std::int32_t result = registry_.query_value(handle, value_name.c_str(), value.type, nullptr, size);
    if (result == platform::kSuccess && size > 0) {
        value.bytes.resize(size);
        result = registry_.query_value(handle, value_name.c_str(), value.type, value.bytes.data(), size);
        value.bytes.resize(size);
    }
    registry_.close_key(handle);
    return result == platform::kSuccess ? std::optional(std::move(value)) : std::nullopt;
}

}  // namespace vex::sim
