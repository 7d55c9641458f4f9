// The statements of a scenario about the user: what he answers, does and sees.
#include <charconv>
#include <limits>
#include <utility>

#include "core/unicode.h"
#include "simulator/statements.h"
#include "support/text.h"

namespace vex::sim {
namespace {

constexpr char16_t kNone[] = u"(none)";
constexpr char16_t kRunList[] = u"lstvDisplayStatus";
constexpr char16_t kRetryItem[] = u"Retry!";

float read_twips(const std::u16string& word) {
    const std::string text = to_utf8(word);
    float number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) refuse("no number of twips", word);
    return number;
}

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

// ---- What he does -------------------------------------------------------------------------------------

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

Action read_click(const Words& words) {
    return [control = words[1]](ScenarioPlayer& player) {
        player.note_unless_done(player.screen().click(control), control);
    };
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

// ---- What he sees -------------------------------------------------------------------------------------

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

constexpr StatementType kStatements[] = {
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

}  // namespace

std::span<const StatementType> statements_of_user() noexcept { return kStatements; }

}  // namespace vex::sim
