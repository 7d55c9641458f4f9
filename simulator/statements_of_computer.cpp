// The statements of a scenario about the computer: settings, registry, files.
#include "simulator/statements.h"

#include "core/unicode.h"
#include "simulator/firmware_image.h"

namespace vex::sim {
namespace {

constexpr char16_t kSettingsRoot[] = u"Software\\Norvan\\";

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

Action read_loader(const Words& words) {
    const bool line = words[2] == u"line";
    if (!line && words[2] != u"server") refuse("neither line nor server", words[2]);
    return [path = words[1], kind = line ? LoaderKind::line : LoaderKind::server](ScenarioPlayer& player) {
        replace_file(player.target_file(path), make_loader_image(kind));
    };
}

}  // namespace vex::sim
