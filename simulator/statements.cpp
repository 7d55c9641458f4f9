// The statements of a scenario, by table: how each is written, and what it does.
#include <algorithm>
#include <charconv>
#include <limits>
#include <stdexcept>

#include "core/unicode.h"
#include "simulator/firmware_image.h"
#include "simulator/scenario_player.h"
#include "simulator/words.h"
#include "support/text.h"

namespace vex::sim {
namespace {

using Action = std::function<void(ScenarioPlayer& player)>;

/// How one statement is written and read. `read` gets all words, the statement's own first, and raises
/// `std::invalid_argument`.
struct Form {
    std::u16string_view name;
    const char* usage;
    std::size_t fewest_words;
    std::size_t most_words;
    Action (*read)(const Words& words);
    /// Position of the word that names a control, before its first "."; 0: none.
    std::size_t control = 0;
};

constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();
constexpr char16_t kAny[] = u"*";
constexpr char16_t kNone[] = u"(none)";
constexpr char16_t kRunList[] = u"lstvDisplayStatus";
constexpr char16_t kRetryItem[] = u"Retry!";
constexpr std::u16string_view kInclude = u"include";
constexpr char kIncludeUsage[] = "include FILE";
constexpr char16_t kSettingsRoot[] = u"Software\\Norvan\\";

[[noreturn]] void refuse(std::string_view what, const std::u16string& word) {
    throw std::invalid_argument(to_utf8(in_quotes(word)) + " is " + std::string(what));
}

std::size_t read_count(const std::u16string& word, std::int64_t most) {
    const auto number = parse_number(word, 1, most);
    if (!number) refuse("no number from 1 to " + std::to_string(most), word);
    return static_cast<std::size_t>(*number);
}

/// The value of "KEY=VALUE" where the word has that key.
std::optional<std::u16string> value_of(std::u16string_view key, const std::u16string& word) {
    if (word.substr(0, key.size()) != key || word.size() <= key.size() || word[key.size()] != u'=') return std::nullopt;
    return word.substr(key.size() + 1);
}

// ---- The host's displays ------------------------------------------------------------------------------

Action read_display(const Words& words) {
    Display display;
    display.name = words[1];
    for (std::size_t i = 2; i < words.size(); ++i) read_display_field(words[i], display);
    return [display](ScenarioPlayer& player) { player.host().put_display(display); };
}

/// Puts a number into the place of each "{n}".
std::u16string numbered(std::u16string text, std::size_t number) {
    constexpr std::u16string_view kPlace = u"{n}";
    const std::u16string digits = from_utf8(std::to_string(number));
    for (std::size_t at = text.find(kPlace); at != text.npos; at = text.find(kPlace, at + digits.size())) {
        text.replace(at, kPlace.size(), digits);
    }
    return text;
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

// ---- The computer -------------------------------------------------------------------------------------

Action read_setting(const Words& words) {
    return [words](ScenarioPlayer& player) {
        player.registry().write_text(kHkeyLocalMachine, kSettingsRoot + words[1] + u"\\" + words[2], words[3], words[4]);
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

// ---- The links ----------------------------------------------------------------------------------------

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

void check_display(ScenarioPlayer& player, const CallPattern& pattern) {
    if (pattern.display) static_cast<void>(player.display(*pattern.display));
}

Action read_fault(const Words& given) {
    Words words = given;
    CallPattern pattern = read_pattern(words);
    pattern.at = take_at(words, 5);
    if (words.size() != 5) refuse("not at=N", words.back());
    const bool raises = words[4] == u"raise";
    if (!raises && words[4] != u"fail") refuse("neither fail nor raise", words[4]);
    if (!raises && pattern.operation == Operation::SignID) refuse("no answer of SignID, which answers nothing", words[4]);
    return [pattern, raises](ScenarioPlayer& player) {
        check_display(player, pattern);
        player.host().links.add_fault(pattern, raises ? FaultKind::raise : FaultKind::fail);
    };
}

Action act_on_control(const std::u16string& control) {
    return [control](ScenarioPlayer& player) {
        player.note_unless_done(player.screen().click(control), control);
    };
}

Action read_say(const Words& given) {
    Words words = given;
    CallPattern pattern = read_pattern(words);
    pattern.at = take_at(words, 5);
    if (words.size() > 6) refuse("not at=N", words.back());
    const std::u16string control = words.size() == 6 ? words[5] : u"";
    return [pattern, text = words[4], control](ScenarioPlayer& player) {
        check_display(player, pattern);
        player.say(pattern, text, control.empty() ? Action() : act_on_control(control));
    };
}

Action read_statement(const Words& words);

Action read_during(const Words& words) {
    const CallPattern pattern = read_pattern(words);
    Action action = read_statement(Words(words.begin() + 5, words.end()));
    return [pattern, text = words[4], action](ScenarioPlayer& player) {
        check_display(player, pattern);
        player.say(pattern, text, action);
    };
}

// ---- The user -----------------------------------------------------------------------------------------

Action read_answer(const Words& words) {
    const std::u16string& what = words[1];
    const std::u16string& answer = words[2];
    if (what == u"picker") {
        return [answer](ScenarioPlayer& player) { player.queue_picker(answer); };
    }
    if (what == u"openfile") {
        return [answer](ScenarioPlayer& player) {
            player.queue_file(answer == u"cancel" ? std::nullopt : std::optional(answer));
        };
    }
    if (what != u"msgbox") refuse("none of picker, openfile, msgbox", what);
    constexpr std::pair<std::u16string_view, forms::MessageAnswer> kAnswers[] = {
        {u"yes", forms::MessageAnswer::yes}, {u"no", forms::MessageAnswer::no}, {u"ok", forms::MessageAnswer::ok}};
    for (const auto& [name, value] : kAnswers) {
        if (answer == name) return [value = value](ScenarioPlayer& player) { player.queue_message(value); };
    }
    refuse("none of yes, no, ok", answer);
}

Action read_pick_all(const Words& /*words*/) {
    return [](ScenarioPlayer& player) {
        std::u16string names;
        const Displays& displays = player.host().displays;
        for (std::size_t i = 0; i < displays.size(); ++i) names += (i == 0 ? u"" : u",") + displays.at(i).name;
        player.queue_picker(std::move(names));
    };
}

Action read_start(const Words& words) {
    if (words.size() > 1 && words[1] != u"frame") refuse("not frame", words[1]);
    const StartMember member = words.size() > 1 ? StartMember::StartFrameFeature : StartMember::StartPlugin;
    return [member](ScenarioPlayer& player) { player.start(member); };
}

Action read_click(const Words& words) { return act_on_control(words[1]); }

float read_twips(const std::u16string& word) {
    const std::string text = to_utf8(word);
    float number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) refuse("no number of twips", word);
    return number;
}

Action read_press(const Words& words) {
    const std::u16string button = words.size() > 4 ? words[4] : u"left";
    if (button != u"left" && button != u"right") refuse("neither left nor right", button);
    return [control = words[1], x = read_twips(words[2]), y = read_twips(words[3]),
            side = button == u"left" ? forms::MouseButton::left : forms::MouseButton::right](ScenarioPlayer& player) {
        player.note_unless_done(player.screen().press(control, side, x, y), control);
    };
}

Action read_set(const Words& words) {
    return [control = words[1], value = words[2]](ScenarioPlayer& player) {
        player.note_unless_done(player.screen().set(control, value), control);
    };
}

Action read_close(const Words& /*words*/) {
    return [](ScenarioPlayer& player) { player.screen().close(); };
}

Action read_activate(const Words& /*words*/) {
    return [](ScenarioPlayer& player) { player.screen().activate(); };
}

Action read_retry(const Words& words) {
    return [row = read_count(words[1], std::numeric_limits<std::int32_t>::max())](ScenarioPlayer& player) {
        player.note_unless_done(player.screen().choose_from_menu(kRunList, row, kRetryItem), kRunList);
    };
}

// ---- What is seen -------------------------------------------------------------------------------------

/// CONTROL.PROPERTY.
struct PropertyName {
    std::u16string control;
    std::u16string property;
};

PropertyName read_property(const std::u16string& word) {
    const std::size_t point = word.find(u'.');
    if (point == word.npos || point == 0 || point + 1 == word.size()) refuse("no CONTROL.PROPERTY", word);
    return {word.substr(0, point), word.substr(point + 1)};
}

/// Texts are compared exactly; words such as True and digits such as those of a colour in any case.
bool same_value(const std::u16string& property, const std::u16string& left, const std::u16string& right) {
    const bool is_word = property == u"Enabled" || property == u"Visible" || property == u"Value" ||
                         property == u"FillColor" || property.ends_with(u".ForeColor");
    return is_word ? equal_ignoring_case(left, right) : left == right;
}

std::u16string registry_text(ScenarioPlayer& player, const RegistryPath& path, const std::u16string& name) {
    const auto value = player.registry().read(path.root, path.key, name);
    return value ? player.registry().show(*value) : kNone;
}

Action read_show(const Words& words) {
    if (words.size() == 2) {
        return [name = read_property(words[1]), word = words[1]](ScenarioPlayer& player) {
            player.trace().print(u"show " + word + u" = " + player.screen().property(name.control, name.property));
        };
    }
    return [path = parse_registry_path(words[1]), words](ScenarioPlayer& player) {
        player.trace().print(u"show " + as_word(words[1]) + u" " + as_word(words[2]) + u" = " +
                             registry_text(player, path, words[2]));
    };
}

Action read_expect(const Words& words) {
    if (words.size() == 3) {
        return [name = read_property(words[1]), word = words[1], value = words[2]](ScenarioPlayer& player) {
            const std::u16string found = player.screen().property(name.control, name.property);
            player.expect(word, value, found, same_value(name.property, value, found));
        };
    }
    return [path = parse_registry_path(words[1]), words](ScenarioPlayer& player) {
        const std::u16string found = registry_text(player, path, words[2]);
        player.expect(as_word(words[1]) + u" " + as_word(words[2]), words[3], found, words[3] == found);
    };
}

Action read_rows(const Words& words) {
    return [control = words[1]](ScenarioPlayer& player) {
        std::size_t number = 0;
        for (const auto& cells : player.screen().rows(control)) {
            player.trace().print(u"row " + from_utf8(std::to_string(++number)) + u": " + shown_row(cells));
        }
    };
}

Action read_units(const Words& /*words*/) {
    return [](ScenarioPlayer& player) {
        const Host& host = player.host();
        for (std::size_t i = 0; i < host.displays.size(); ++i) {
            const Display& display = host.displays.at(i);
            for (const std::int16_t id : host.units.ids(display)) {
                player.trace().print(u"unit " + in_quotes(display.name) + u" " + decimal_text(id) + u": " +
                                     describe(host.units.content(display.name, id)));
            }
        }
    };
}

constexpr Form kForms[] = {
    {u"display", "display NAME [KEY=VALUE]...", 2, kAnyNumber, &read_display},
    {u"displays", "displays COUNT PREFIX [KEY=VALUE]...", 3, kAnyNumber, &read_displays},
    {u"unit", "unit NAME ID slaves=YxX|absent", 4, 4, &read_unit},
    {u"box", "box NAME TEXT", 3, 3, &read_box},
    {u"setting", "setting APPLICATION SECTION KEY VALUE", 5, 5, &read_setting},
    {u"registry", "registry ROOT\\KEY NAME TYPE VALUE", 5, 5, &read_registry},
    {u"file", "file PATH [hidden|folder]", 2, 3, &read_file_statement},
    {u"copy", "copy SOURCE PATH", 3, 3, &read_copy},
    {u"lines", "lines PATH LINE...", 3, kAnyNumber, &read_lines},
    {u"image", "image PATH BYTES", 3, 3, &read_image},
    {u"fault", "fault NAME ID MEMBER fail|raise [at=N]", 5, 6, &read_fault},
    {u"say", "say NAME ID MEMBER TEXT [CONTROL] [at=N]", 5, 7, &read_say},
    {u"during", "during NAME ID MEMBER TEXT STATEMENT...", 6, kAnyNumber, &read_during},
    {u"answer", "answer picker TEXT | answer openfile PATH|cancel | answer msgbox yes|no|ok", 3, 3, &read_answer},
    {u"pick-all", "pick-all", 1, 1, &read_pick_all},
    {u"start", "start [frame]", 1, 2, &read_start},
    {u"click", "click CONTROL", 2, 2, &read_click, 1},
    {u"press", "press CONTROL X Y [left|right]", 4, 5, &read_press, 1},
    {u"set", "set CONTROL VALUE", 3, 3, &read_set, 1},
    {u"close", "close", 1, 1, &read_close},
    {u"activate", "activate", 1, 1, &read_activate},
    {u"retry", "retry ROW", 2, 2, &read_retry},
    {u"show", "show CONTROL.PROPERTY | show ROOT\\KEY NAME", 2, 3, &read_show, 1},
    {u"expect", "expect CONTROL.PROPERTY VALUE | expect ROOT\\KEY NAME VALUE", 3, 4, &read_expect, 1},
    {u"rows", "rows CONTROL", 2, 2, &read_rows, 1},
    {u"units", "units", 1, 1, &read_units},
};

const Form& form_of(const Words& words) {
    for (const Form& form : kForms) {
        if (form.name != words.front()) continue;
        if (words.size() < form.fewest_words || words.size() > form.most_words) {
            throw std::invalid_argument(std::string("expected ") + form.usage);
        }
        return form;
    }
    refuse("no statement", words.front());
}

Action read_statement(const Words& words) { return form_of(words).read(words); }

/// Reads a scenario and the files that it includes, statement by statement.
struct Parser {
    Scenario& scenario;
    const ReadIncluded& read_included;

    void read(const std::string& file, std::string_view text, int depth) {
        const auto name = std::make_shared<const std::string>(file);
        const std::vector<std::u16string> lines = split_lines(text);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const Place place{name, i + 1};
            try {
                const Words words = split_words(lines[i]);
                if (words.empty()) continue;
                if (words.front() == kInclude) {
                    include(words, depth);
                } else {
                    scenario.statements.push_back({place, control_of(words), read_statement(words)});
                }
            } catch (const TextError&) {
                throw;
            } catch (const std::exception& error) {
                throw TextError(file, place.line, error.what());
            }
        }
    }

private:
    void include(const Words& words, int depth) {
        constexpr int kDeepest = 8;
        if (words.size() != 2) throw std::invalid_argument(std::string("expected ") + kIncludeUsage);
        if (depth == kDeepest) throw std::invalid_argument("files include each other too deeply");
        std::string text;
        try {
            text = read_included(words[1]);
        } catch (const std::exception& error) {
            throw std::invalid_argument(error.what());
        }
        read(to_utf8(words[1]), text, depth + 1);
    }

    static std::u16string control_of(const Words& words) {
        const Form& form = form_of(words);
        if (form.control == 0 || is_registry_path(words[form.control])) return {};
        return words[form.control].substr(0, words[form.control].find(u'.'));
    }
};

}  // namespace

Scenario parse_scenario(const std::string& file, std::string_view text, const ReadIncluded& read_included) {
    Scenario scenario;
    Parser{scenario, read_included}.read(file, text, 0);
    return scenario;
}

std::string statement_reference() {
    std::string text = std::string("  ") + kIncludeUsage + "\n";
    for (const Form& form : kForms) text += std::string("  ") + form.usage + "\n";
    return text;
}

}  // namespace vex::sim
