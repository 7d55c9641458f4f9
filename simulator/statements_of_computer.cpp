// The statements of a scenario about the computer: settings, registry, files.
#include "simulator/statements.h"

#include "core/narrow.h"
#include "core/unicode.h"
#include "platform/native/registry_text.h"
#include "simulator/firmware_image.h"

namespace vex::sim {
namespace {

namespace native = platform::native;

constexpr char16_t kSettingsRoot[] = u"Software\\Norvan\\";

/// The path of an exported key where a 32-bit program finds it: 64-bit Windows keeps such keys in a branch of their
/// own.
std::u16string path_of_32_bits(std::u16string_view path) {
    std::u16string_view rest = path;
    const std::u16string_view first = native::take_name(rest);
    const std::u16string_view second = native::take_name(rest);
    const bool own_branch = equal_ignoring_case(first, u"Software") && equal_ignoring_case(second, u"WOW6432Node");
    return own_branch ? std::u16string(first) + u'\\' + std::u16string(rest) : std::u16string(path);
}

/// Raises `std::runtime_error`.
void import_section(Computer& computer, const native::RegistrySection& section) {
    std::u16string_view path = section.path;
    const std::u16string_view root = native::take_name(path);
    const bool machine = equal_ignoring_case(root, u"HKEY_LOCAL_MACHINE");
    if (section.deleted || (!machine && !equal_ignoring_case(root, u"HKEY_CURRENT_USER"))) {
        throw std::runtime_error(
            "only keys of HKEY_LOCAL_MACHINE and HKEY_CURRENT_USER are imported, and none deleted");
    }
    platform::Registry& registry = computer.registry();
    const auto narrow = [&](std::u16string_view text) { return computer.code_page().to_ansi(text); };
    platform::RegistryKey key = 0;
    std::int32_t result =
        registry.create_key(platform::registry_key(machine ? kHkeyLocalMachine : platform::kHkeyCurrentUser),
                            narrow(path_of_32_bits(path)).c_str(), "", platform::kKeyWrite, {}, key);
    for (const auto& [value, deleted] : section.entries) {
        if (result != platform::kSuccess) break;
        const std::string name = narrow(value.name);
        if (deleted) {
            registry.delete_value(key, name.c_str());
            continue;
        }
        const std::string data = native::is_string(value.type) ? narrow(native::text_of(value.data))
                                                               : std::string(value.data.begin(), value.data.end());
        result = registry.set_value(key, name.c_str(), value.type, reinterpret_cast<const std::uint8_t*>(data.data()),
                                    narrowed<std::uint32_t>(data.size()));
    }
    registry.close_key(key);
    if (result != platform::kSuccess) {
        throw std::runtime_error("the registry refuses this key (result " + std::to_string(result) + ")");
    }
}

}  // namespace

Action read_setting(const Words& words) {
    return [words](ScenarioPlayer& player) {
        player.registry().write_text(kHkeyLocalMachine, kSettingsRoot + words[1] + u"\\" + words[2], words[3],
                                     words[4]);
    };
}

Action read_registry(const Words& words) {
    return [path = parse_registry_path(words[1]), words](ScenarioPlayer& player) {
        RegistryStore& registry = player.registry();
        registry.write(path.root, path.key, words[2], registry.parse(words[3], words[4]));
    };
}

Action read_import(const Words& words) {
    return [name = words[1]](ScenarioPlayer& player) {
        const std::string bytes = read_file(player.source_file(name));
        std::size_t line = 0;
        try {
            for (const auto& section : native::read_registry(bytes)) {
                line = section.line;
                import_section(player.host().computer, section);
            }
        } catch (const native::RegistryDamage& damage) {
            throw TextError(to_utf8(name), damage.line(), damage.what());
        } catch (const std::runtime_error& error) {
            throw TextError(to_utf8(name), line, error.what());
        }
    };
}

Action read_file_statement(const Words& words) {
    const std::u16string kind = words.size() > 2 ? words[2] : u"";
    if (!kind.empty() && kind != u"hidden" && kind != u"folder") refuse("neither hidden nor folder", kind);
    return [path = words[1], kind](ScenarioPlayer& player) {
        const std::filesystem::path real = player.target_file(path);
        if (kind == u"folder") {
            std::filesystem::create_directories(real);
        } else {
            replace_file(real, "");
        }
        if (kind == u"hidden") player.host().computer.hide(path);
    };
}

Action read_copy(const Words& words) {
    return [source = words[1], path = words[2]](ScenarioPlayer& player) {
        const std::filesystem::path from = player.source_file(source);
        replace_file(player.target_file(path), read_file(from));
    };
}

Action read_lines(const Words& words) {
    std::string text;
    for (std::size_t i = 2; i < words.size(); ++i) text += to_utf8(words[i]) + "\n";
    return [path = words[1], text](ScenarioPlayer& player) { replace_file(player.target_file(path), text); };
}

Action read_image(const Words& words) {
    constexpr std::int64_t kLargestImage = 1 << 20;
    const std::size_t size = read_count(words[2], kLargestImage);
    return [path = words[1], size](ScenarioPlayer& player) {
        replace_file(player.target_file(path), make_motorola_image(size));
    };
}

}  // namespace vex::sim
