// Registry values as scenarios write and show them, and registry exports.
#include "simulator/registry_editor.h"

#include <algorithm>
#include <limits>

#include "core/digits.h"
#include "core/narrow.h"
#include "core/unicode.h"
#include "platform/native/registry_text.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

namespace native = platform::native;

struct Root {
    std::u16string_view name;
    /// In an export; empty: is not imported.
    std::u16string_view exported;
    std::int32_t handle;
};

constexpr Root kRoots[] = {
    {u"HKLM", u"HKEY_LOCAL_MACHINE", platform::kHkeyLocalMachine},
    {u"HKCU", u"HKEY_CURRENT_USER", platform::kHkeyCurrentUser},
    {u"HKCR", u"", platform::kHkeyClassesRoot},
};

constexpr std::pair<std::u16string_view, std::uint32_t> kTypes[] = {
    {u"sz", platform::kRegSz},       {u"expand_sz", platform::kRegExpandSz}, {u"multi_sz", platform::kRegMultiSz},
    {u"dword", platform::kRegDword}, {u"binary", platform::kRegBinary},
};

constexpr std::u16string_view kNullMark = u"\\0";
constexpr std::size_t kDwordSize = 4;

const Root* root_of(std::u16string_view path) noexcept {
    const auto* const root = std::ranges::find(kRoots, path.substr(0, path.find(u'\\')), &Root::name);
    return root == std::end(kRoots) ? nullptr : root;
}

std::uint32_t type_of(std::u16string_view word) {
    std::string names;
    for (const auto& [name, type] : kTypes) {
        if (name == word) return type;
        names += (names.empty() ? "" : ", ") + to_utf8(name);
    }
    refuse(word, "is none of " + names);
}

std::string dword_bytes(std::u16string_view text) {
    auto number = parse_number(text, 0, std::numeric_limits<std::uint32_t>::max());
    if (!number) refuse(text, "is no number of 32 bits");
    std::string bytes;
    for (; bytes.size() < kDwordSize; *number >>= 8) bytes += static_cast<char>(*number & 0xFF);
    return bytes;
}

/// Each text with its null, and one more that ends the list.
std::u16string list_of_texts(std::u16string text) {
    for (std::size_t at = text.find(kNullMark); at != text.npos; at = text.find(kNullMark, at))
        text.replace(at, kNullMark.size(), 1, u'\0');
    if (!text.empty() && text.back() != u'\0') text += u'\0';
    return text + u'\0';
}

/// The path of an exported key where a 32-bit program finds it: 64-bit Windows keeps such keys in a branch of their
/// own.
std::u16string path_of_32_bits(std::u16string_view path) {
    std::u16string_view rest = path;
    const std::u16string_view first = native::take_name(rest);
    const std::u16string_view second = native::take_name(rest);
    const bool own_branch = equal_ignoring_case(first, u"Software") && equal_ignoring_case(second, u"WOW6432Node");
    return own_branch ? std::u16string(first) + u'\\' + std::u16string(rest) : std::u16string(path);
}

RegistryPath imported_path(const native::RegistrySection& section) {
    std::u16string_view path = section.path;
    const std::u16string_view name = native::take_name(path);
    for (const Root& root : kRoots) {
        if (!section.deleted && !root.exported.empty() && equal_ignoring_case(name, root.exported))
            return {root.handle, path_of_32_bits(path)};
    }
    throw std::runtime_error("only keys of HKEY_LOCAL_MACHINE and HKEY_CURRENT_USER are imported, and none deleted");
}

}  // namespace

RegistryPath parse_registry_path(std::u16string_view text) {
    const Root* root = root_of(text);
    const std::size_t separator = text.find(u'\\');
    if (root == nullptr || separator == text.npos || separator + 1 == text.size())
        refuse(text, "is no ROOT\\KEY with a root of HKLM, HKCU or HKCR");
    return {root->handle, std::u16string(text.substr(separator + 1))};
}

bool is_registry_path(std::u16string_view text) noexcept {
    return text.find(u'\\') != text.npos && root_of(text) != nullptr;
}

void RegistryEditor::change(const RegistryPath& path, const Change& work) {
    platform::RegistryKey key = 0;
    std::int32_t result = registry_.create_key(platform::registry_key(path.root), narrow(path.key).c_str(), "",
                                               platform::kKeyWrite, {}, key);
    if (result == platform::kSuccess) {
        result = work(key);
        registry_.close_key(key);
    }
    if (result == platform::kSuccess) return;
    throw std::runtime_error("the registry refuses " + to_utf8(path.key) + " (result " + std::to_string(result) + ")");
}

std::int32_t RegistryEditor::set(platform::RegistryKey key, std::u16string_view name, std::uint32_t type,
                                 std::string_view data) {
    return registry_.set_value(key, narrow(name).c_str(), type, reinterpret_cast<const std::uint8_t*>(data.data()),
                               narrowed<std::uint32_t>(data.size()));
}

void RegistryEditor::write(const RegistryPath& path, std::u16string_view name, std::u16string_view type_word,
                           std::u16string_view given) {
    const std::uint32_t type = type_of(type_word);
    const std::u16string text(given);
    const std::string data = type == platform::kRegDword     ? dword_bytes(text)
                             : type == platform::kRegBinary  ? read_hex<std::string>(to_utf8(text))
                             : type == platform::kRegMultiSz ? narrow(list_of_texts(text))
                                                             : narrow(text + u'\0');
    change(path, [&](platform::RegistryKey key) { return set(key, name, type, data); });
}

std::u16string RegistryEditor::show(const RegistryPath& path, std::u16string_view name) const {
    platform::RegistryKey key = 0;
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    std::string data;
    const std::string value = narrow(name);
    std::int32_t result =
        registry_.open_key(platform::registry_key(path.root), narrow(path.key).c_str(), platform::kKeyRead, key);
    if (result == platform::kSuccess) {
        result = registry_.query_value(key, value.c_str(), type, nullptr, size);
        data.resize(size);
        if (result == platform::kSuccess && size > 0)
            result =
                registry_.query_value(key, value.c_str(), type, reinterpret_cast<std::uint8_t*>(data.data()), size);
        registry_.close_key(key);
    }
    if (result != platform::kSuccess) return u"(none)";
    if (type == platform::kRegSz || type == platform::kRegExpandSz)
        return platform::from_ansi(data.substr(0, data.find('\0')));
    std::u16string shown;
    if (type == platform::kRegMultiSz) {
        data.resize(data.find_last_not_of('\0') + 1);
        for (const char16_t character : platform::from_ansi(data))
            shown += character == u'\0' ? std::u16string(kNullMark) : std::u16string(1, character);
    } else if (type == platform::kRegDword && data.size() == kDwordSize) {
        std::uint32_t number = 0;
        for (std::size_t i = kDwordSize; i-- > 0;) number = number << 8U | static_cast<unsigned char>(data[i]);
        shown = decimal_text(number);
    } else {
        for (const char byte : data) shown += digits_of(static_cast<unsigned char>(byte), 16, 2);
    }
    return shown;
}

void RegistryEditor::import(const std::string& file, std::string_view bytes) {
    std::size_t line = 0;
    try {
        for (const native::RegistrySection& section : native::read_registry(bytes)) {
            line = section.line;
            change(imported_path(section), [&](platform::RegistryKey key) {
                std::int32_t result = platform::kSuccess;
                for (const auto& [name, value] : section.entries) {
                    if (!value) {
                        registry_.delete_value(key, narrow(name).c_str());
                        continue;
                    }
                    const auto& [type, data] = *value;
                    result = set(key, name, type,
                                 native::is_string(type) ? narrow(native::text_of(data))
                                                         : std::string(data.begin(), data.end()));
                    if (result != platform::kSuccess) break;
                }
                return result;
            });
        }
    } catch (const native::RegistryDamage& damage) {
        throw TextError(file, damage.line(), damage.what());
    } catch (const std::runtime_error& error) {
        throw TextError(file, line, error.what());
    }
}

}  // namespace vex::sim
