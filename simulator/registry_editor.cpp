// Registry values as scenarios write and show them, and registry exports.
#include "simulator/registry_editor.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <stdexcept>

#include "core/digits.h"
#include "core/narrow.h"
#include "core/unicode.h"
#include "platform/native/registry_text.h"
#include "platform/system.h"
#include "simulator/words.h"
#include "support/open_registry_key.h"

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
    {u"sz", platform::kRegSz}, {u"expand_sz", platform::kRegExpandSz}, {u"dword", platform::kRegDword}};

std::string dword_bytes(std::u16string_view text) {
    const auto number = parse_number(text, 0, std::numeric_limits<std::uint32_t>::max());
    if (!number) refuse(text, "is no number of 32 bits");
    const auto value = static_cast<std::uint32_t>(*number);
    return {reinterpret_cast<const char*>(&value), sizeof value};
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

/// Does the `work` on a key, which is made where it is missing; it answers a result code.
void change(const RegistryPath& path, const std::function<std::int32_t(platform::RegistryKey key)>& work) {
    OpenRegistryKey key(platform::registry());
    std::int32_t result =
        platform::registry().create_key(platform::registry_key(path.root), platform::to_ansi(path.key).c_str(), "",
                                        platform::kKeyWrite, {}, key.receive());
    if (result == platform::kSuccess) result = work(key.get());
    if (result == platform::kSuccess) return;
    throw std::runtime_error("the registry refuses " + to_utf8(path.key) + " (result " + std::to_string(result) + ")");
}

std::int32_t set(platform::RegistryKey key, std::u16string_view name, std::uint32_t type, std::string_view data) {
    return platform::registry().set_value(key, platform::to_ansi(name).c_str(), type,
                                          reinterpret_cast<const std::uint8_t*>(data.data()),
                                          narrowed<std::uint32_t>(data.size()));
}

/// What an export says of one value.
std::int32_t merge(platform::RegistryKey key, const native::RegistrySection::Entry& entry) {
    if (!entry.value) {
        platform::registry().delete_value(key, platform::to_ansi(entry.name).c_str());
        return platform::kSuccess;
    }
    const auto& [type, data] = *entry.value;
    return set(
        key, entry.name, type,
        native::is_string(type) ? platform::to_ansi(native::text_of(data)) : std::string(data.begin(), data.end()));
}

}  // namespace

RegistryPath parse_registry_path(std::u16string_view text) {
    const std::size_t separator = std::min(text.find(u'\\'), text.size());
    const auto* const root = std::ranges::find(kRoots, text.substr(0, separator), &Root::name);
    if (root == std::end(kRoots) || separator + 1 >= text.size())
        refuse(text, "is no ROOT\\KEY with a root of HKLM, HKCU or HKCR");
    return {root->handle, std::u16string(text.substr(separator + 1))};
}

void write_registry(const RegistryPath& path, std::u16string_view name, std::u16string_view type,
                    std::u16string_view text) {
    const auto* const known = std::ranges::find(kTypes, type, &std::pair<std::u16string_view, std::uint32_t>::first);
    if (known == std::end(kTypes)) refuse(type, "is none of sz, expand_sz, dword");
    const std::string data =
        known->second == platform::kRegDword ? dword_bytes(text) : platform::to_ansi(std::u16string(text) + u'\0');
    change(path, [&](platform::RegistryKey key) { return set(key, name, known->second, data); });
}

void import_registry(const std::string& file, std::string_view bytes) {
    std::size_t line = 0;
    try {
        for (const native::RegistrySection& section : native::read_registry(bytes)) {
            line = section.line;
            change(imported_path(section), [&](platform::RegistryKey key) {
                std::int32_t result = platform::kSuccess;
                for (const auto& entry : section.entries)
                    if (result == platform::kSuccess) result = merge(key, entry);
                return result;
            });
        }
    } catch (const native::RegistryDamage& damage) {
        throw TextError(file, damage.line(), damage.what());
    } catch (const std::runtime_error& error) {
        throw TextError(file, line, error.what());
    }
}

std::u16string show_registry(const RegistryPath& path, std::u16string_view name) {
    constexpr std::size_t kLargest = 1U << 16U;
    OpenRegistryKey key(platform::registry());
    std::uint32_t type = 0;
    std::uint32_t size = kLargest;
    std::string data(kLargest, '\0');
    if (key.open(platform::registry_key(path.root), platform::to_ansi(path.key), platform::kKeyRead) !=
            platform::kSuccess ||
        platform::registry().query_value(key.get(), platform::to_ansi(name).c_str(), type,
                                         reinterpret_cast<std::uint8_t*>(data.data()), size) != platform::kSuccess)
        return kNoValue;
    data.resize(size);
    if (type == platform::kRegSz || type == platform::kRegExpandSz)
        return platform::from_ansi(data.substr(0, data.find('\0')));
    std::uint32_t number = 0;
    if (type == platform::kRegDword && data.size() == sizeof number) {
        data.copy(reinterpret_cast<char*>(&number), sizeof number);
        return decimal_text(number);
    }
    std::u16string digits;
    for (const char byte : data) digits += digits_of(static_cast<unsigned char>(byte), 16, 2);
    return digits;
}

}  // namespace vex::sim
