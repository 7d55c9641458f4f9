// The statements of a scenario about the host and its machine: displays, links, settings, files.
#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

#include "core/narrow.h"
#include "core/unicode.h"
#include "platform/native/registry_text.h"
#include "simulator/controls.h"
#include "simulator/firmware_image.h"
#include "simulator/statements.h"

namespace vex::sim {
namespace {

namespace native = platform::native;

constexpr char16_t kAny[] = u"*";

/// Puts a number into the place of each "{n}".
std::u16string numbered(std::u16string text, std::size_t number) {
    constexpr std::u16string_view kPlace = u"{n}";
    const std::u16string digits = from_utf8(std::to_string(number));
    for (std::size_t at = text.find(kPlace); at != text.npos; at = text.find(kPlace, at + digits.size())) {
        text.replace(at, kPlace.size(), digits);
    }
    return text;
}

/// NAME ID MEMBER, from the second word.
CallPattern read_pattern(const Words& words) {
    CallPattern pattern;
    if (words[1] != kAny) pattern.display = words[1];
    if (words[2] != kAny) pattern.id = parse_id(words[2]);
    pattern.operation = parse_operation(words[3]);
    return pattern;
}

/// Takes "at=N" off the end of a statement.
std::int64_t take_at(Words& words, std::size_t fewest_words) {
    const auto at = words.size() > fewest_words ? value_of(u"at", words.back()) : std::nullopt;
    if (!at) return 0;
    words.pop_back();
    return static_cast<std::int64_t>(read_count(*at, std::numeric_limits<std::int32_t>::max()));
}

/// The same for a call during which the control can speak.
CallPattern read_speaking_pattern(const Words& words) {
    CallPattern pattern = read_pattern(words);
    if (!speaks(pattern.operation)) refuse("no member of the transmission control", words[3]);
    return pattern;
}

void check_display(ScenarioPlayer& player, const CallPattern& pattern) {
    if (pattern.display) static_cast<void>(player.display(*pattern.display));
}

constexpr char16_t kSettingsRoot[] = u"Software\\Norvan\\";

// ---- Displays -----------------------------------------------------------------------------------------

Action read_display(const Words& words) {
    Display display;
    display.name = words[1];
    for (std::size_t i = 2; i < words.size(); ++i) read_display_field(words[i], display);
    return [display](ScenarioPlayer& player) { player.host().put_display(display); };
}

Action read_displays(const Words& words) {
    constexpr std::int64_t kMostDisplays = 1'000'000;
    const std::size_t count = read_count(words[1], kMostDisplays);
    Display checked;
    for (std::size_t i = 3; i < words.size(); ++i) read_display_field(numbered(words[i], 1), checked);
    return [words, count](ScenarioPlayer& player) {
        for (std::size_t number = 1; number <= count; ++number) {
            Display display;
            display.name = words[2] + from_utf8(std::to_string(number));
            for (std::size_t i = 3; i < words.size(); ++i) read_display_field(numbered(words[i], number), display);
            player.host().put_display(std::move(display));
        }
    };
}

Action read_unit(const Words& words) {
    const std::int16_t id = parse_id(words[2]);
    if (words[3] == u"absent") {
        return [name = words[1], id](ScenarioPlayer& player) {
            player.host().units.set_absent(player.display(name).name, id);
        };
    }
    const auto slaves = value_of(u"slaves", words[3]);
    if (!slaves) refuse("neither slaves=YxX nor absent", words[3]);
    return [name = words[1], id, counts = parse_slaves(*slaves)](ScenarioPlayer& player) {
        player.host().units.set_slaves(player.display(name).name, id, counts);
    };
}

Action read_box(const Words& words) {
    return [name = words[1], text = words[2]](ScenarioPlayer& player) {
        player.host().units.add_box(player.display(name).name, text);
    };
}

// ---- Links --------------------------------------------------------------------------------------------

Action read_fault(const Words& given) {
    Words words = given;
    CallPattern pattern = read_pattern(words);
    pattern.at = take_at(words, 5);
    if (words.size() != 5) refuse("not at=N", words.back());
    constexpr std::pair<std::u16string_view, FaultKind> kKinds[] = {
        {u"fail", FaultKind::fail}, {u"raise", FaultKind::raise}, {u"replace", FaultKind::replace}};
    const auto* const kind = std::ranges::find(kKinds, words[4], &std::pair<std::u16string_view, FaultKind>::first);
    if (kind == std::end(kKinds)) refuse("none of fail, raise, replace", words[4]);
    if ((kind->second == FaultKind::fail && !answers_success(pattern.operation)) ||
        (kind->second == FaultKind::replace && pattern.operation != Operation::OpenConnection))
        refuse("nothing that " + to_utf8(words[3]) + " does", words[4]);
    return [pattern, fault = kind->second](ScenarioPlayer& player) {
        check_display(player, pattern);
        player.host().links.add_fault(pattern, fault);
    };
}

Action read_say(const Words& given) {
    Words words = given;
    CallPattern pattern = read_speaking_pattern(words);
    pattern.at = take_at(words, 5);
    if (words.size() > 6) refuse("not at=N", words.back());
    const Action reaction = words.size() == 6 ? read_statement({u"click", words[5]}) : Action();
    return [pattern, text = words[4], reaction](ScenarioPlayer& player) {
        check_display(player, pattern);
        player.say(pattern, text, reaction);
    };
}

Action read_during(const Words& words) {
    const CallPattern pattern = read_speaking_pattern(words);
    if (words[5] == words[0]) refuse("no statement for the middle of a call", words[5]);
    Action action = read_statement(Words(words.begin() + 5, words.end()));
    return [pattern, text = words[4], action](ScenarioPlayer& player) {
        check_display(player, pattern);
        player.say(pattern, text, action);
    };
}

// ---- The machine --------------------------------------------------------------------------------------

Action read_setting(const Words& words) {
    return [words](ScenarioPlayer& player) {
        player.registry().write_text(kHkeyLocalMachine, kSettingsRoot + words[1] + u"\\" + words[2], words[3],
                                     words[4]);
    };
}

Action read_registry(const Words& words) {
    return [path = parse_registry_path(words[1]), words](ScenarioPlayer& player) {
        RegistryEditor& registry = player.registry();
        registry.write(path.root, path.key, words[2], registry.parse(words[3], words[4]));
    };
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

/// Raises `std::runtime_error`.
void import_section(Machine& machine, const native::RegistrySection& section) {
    std::u16string_view path = section.path;
    const std::u16string_view root = native::take_name(path);
    const bool of_machine = equal_ignoring_case(root, u"HKEY_LOCAL_MACHINE");
    if (section.deleted || (!of_machine && !equal_ignoring_case(root, u"HKEY_CURRENT_USER"))) {
        throw std::runtime_error(
            "only keys of HKEY_LOCAL_MACHINE and HKEY_CURRENT_USER are imported, and none deleted");
    }
    platform::Registry& registry = machine.registry();
    const auto narrow = [&](std::u16string_view text) { return machine.code_page().to_ansi(text); };
    platform::RegistryKey key = 0;
    std::int32_t result =
        registry.create_key(platform::registry_key(of_machine ? kHkeyLocalMachine : platform::kHkeyCurrentUser),
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

Action read_import(const Words& words) {
    return [name = words[1]](ScenarioPlayer& player) {
        const std::string bytes = read_file(player.source_file(name));
        std::size_t line = 0;
        try {
            for (const auto& section : native::read_registry(bytes)) {
                line = section.line;
                import_section(player.host().machine, section);
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
        if (kind == u"hidden") player.host().machine.hide(path);
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

Action read_loader(const Words& words) {
    const bool line = words[2] == u"line";
    if (!line && words[2] != u"server") refuse("neither line nor server", words[2]);
    return [path = words[1], kind = line ? LoaderKind::line : LoaderKind::server](ScenarioPlayer& player) {
        replace_file(player.target_file(path), make_loader_image(kind));
    };
}

constexpr StatementType kStatements[] = {
    {u"display", "display NAME [KEY=VALUE]...", 2, kAnyNumber, &read_display},
    {u"displays", "displays COUNT PREFIX [KEY=VALUE]...", 3, kAnyNumber, &read_displays},
    {u"unit", "unit NAME ID slaves=YxX|absent", 4, 4, &read_unit},
    {u"box", "box NAME TEXT", 3, 3, &read_box},
    {u"setting", "setting APPLICATION SECTION KEY VALUE", 5, 5, &read_setting},
    {u"registry", "registry ROOT\\KEY NAME TYPE VALUE", 5, 5, &read_registry},
    {u"import", "import FILE", 2, 2, &read_import},
    {u"file", "file PATH [hidden|folder]", 2, 3, &read_file_statement},
    {u"copy", "copy SOURCE PATH", 3, 3, &read_copy},
    {u"lines", "lines PATH LINE...", 3, kAnyNumber, &read_lines},
    {u"image", "image PATH BYTES", 3, 3, &read_image},
    {u"loader", "loader PATH line|server", 3, 3, &read_loader},
    {u"fault", "fault NAME ID MEMBER fail|raise|replace [at=N]", 5, 6, &read_fault},
    {u"say", "say NAME ID MEMBER TEXT [CONTROL] [at=N]", 5, 7, &read_say},
    {u"during", "during NAME ID MEMBER TEXT STATEMENT...", 6, kAnyNumber, &read_during},
};

}  // namespace

std::span<const StatementType> statements_of_host() noexcept { return kStatements; }

}  // namespace vex::sim
