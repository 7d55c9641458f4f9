// The statements of a scenario: each by what it means, and how all are written at the end.
#include <algorithm>
#include <limits>

#include "core/digits.h"
#include "core/unicode.h"
#include "simulator/firmware_image.h"
#include "simulator/registry_editor.h"
#include "simulator/scenario.h"
#include "simulator/transmission_control.h"

namespace vex::sim {
namespace {

using Player = ScenarioPlayer;

constexpr std::int64_t kAnyCount = std::numeric_limits<std::int32_t>::max();
constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

/// A number from 1 to `most`.
std::size_t read_count(const std::u16string& word, std::int64_t most = kAnyCount) {
    const auto number = parse_number(word, 1, most);
    if (!number) refuse(word, "is no number from 1 to " + std::to_string(most));
    return static_cast<std::size_t>(*number);
}

/// The position of the word among those that are allowed there.
std::size_t one_of(std::initializer_list<std::u16string_view> allowed, const std::u16string& word, const char* what) {
    const auto* const found = std::ranges::find(allowed, word);
    if (found == allowed.end()) refuse(word, what);
    return static_cast<std::size_t>(found - allowed.begin());
}

// ---- Displays -----------------------------------------------------------------------------------------

Action display(const Words& words) {
    return [display = read_display(words)](Player& player) { player.host.put_display(display); };
}

/// "unit" and "box".
Action hardware(const Words& words) {
    Units().read(words);
    return [words](Player& player) {
        player.require_display(words[1]);
        player.host.units.read(words);
    };
}

Action units(const Words& /*words*/) {
    return [](Player& player) {
        for (const std::u16string& line : player.host.unit_lines()) player.host.trace.print(line);
    };
}

// ---- The computer -------------------------------------------------------------------------------------

Action setting(const Words& words) {
    return [words](Player&) {
        write_registry({.key = u"Software\\Norvan\\" + words[1] + u"\\" + words[2]}, words[3], u"sz", words[4]);
    };
}

Action registry(const Words& words) {
    return
        [words, path = parse_registry_path(words[1])](Player&) { write_registry(path, words[2], words[3], words[4]); };
}

Action import(const Words& words) {
    return [file = words[1]](Player& player) {
        const std::filesystem::path source = player.source_file(file);
        import_registry(source.string(), read_file(source));
    };
}

Action file(const Words& words) {
    if (words.size() > 2 && words[2] != u"hidden") refuse(words[2], "is not hidden");
    return [path = words[1], hidden = words.size() > 2](Player& player) {
        player.put_file(path, "");
        if (hidden) player.host.machine.hide(path);
    };
}

Action copy(const Words& words) {
    return [words](Player& player) { player.put_file(words[2], read_file(player.source_file(words[1]))); };
}

Action put(const std::u16string& path, const std::string& content) {
    return [path, content](Player& player) { player.put_file(path, content); };
}

Action lines(const Words& words) {
    std::string text;
    for (std::size_t i = 2; i < words.size(); ++i) text += to_utf8(words[i]) + "\n";
    return put(words[1], text);
}

Action image(const Words& words) {
    constexpr std::int64_t kLargestImage = 1 << 20;
    return put(words[1], make_motorola_image(read_count(words[2], kLargestImage)));
}

/// That of the device servers has a D before the dot.
Action loader(const Words& words) { return put(words[1], make_loader_image(to_upper(words[1]).ends_with(u"D.BIN"))); }

// ---- The links ----------------------------------------------------------------------------------------

/// NAME ID MEMBER, from the second word, and "at=N" where it is the sixth.
CallPattern read_pattern(const Words& words) {
    CallPattern pattern;
    if (words[1] != u"*") pattern.display = words[1];
    if (words[2] != u"*") pattern.id = parse_id(words[2]);
    pattern.operation = parse_operation(words[3]);
    const auto at = words.size() > 5 ? value_of(u"at", words[5]) : std::nullopt;
    if (at) pattern.at = static_cast<std::int64_t>(read_count(*at));
    return pattern;
}

Action fault(const Words& words) {
    const CallPattern pattern = read_pattern(words);
    if (words.size() > 5 && pattern.at == 0) refuse(words[5], "is not at=N");
    constexpr FaultKind kKinds[] = {FaultKind::fail, FaultKind::raise, FaultKind::replace};
    const FaultKind kind = kKinds[one_of({u"fail", u"raise", u"replace"}, words[4], "is none of fail, raise, replace")];
    if ((kind == FaultKind::fail && (pattern.operation == u"SignID" || !speaks(pattern.operation))) ||
        (kind == FaultKind::replace && pattern.operation != u"OpenConnection"))
        refuse(words[4], "is nothing that " + to_utf8(words[3]) + " does");
    return [pattern, kind](Player& player) {
        if (pattern.display) player.require_display(*pattern.display);
        player.host.script.push_back({.pattern = pattern, .fault = kind});
    };
}

Action say(const Words& words) {
    const CallPattern pattern = read_pattern(words);
    if (!speaks(pattern.operation)) refuse(words[3], "is no member of the transmission control");
    const Words rest(words.begin() + (pattern.at == 0 ? 5 : 6), words.end());
    Action reaction;
    if (!rest.empty()) {
        const StatementType& type = statement_type(rest);
        if (type.read == nullptr) refuse(rest.front(), "is no statement for the middle of a call");
        reaction = type.read(rest);
    }
    return [pattern, text = words[4], reaction](Player& player) {
        if (pattern.display) player.require_display(*pattern.display);
        player.say(pattern, text, reaction);
    };
}

// ---- What the user does -------------------------------------------------------------------------------

Action answer(const Words& words) {
    const std::u16string& text = words[2];
    const std::size_t asked =
        one_of({u"picker", u"openfile", u"msgbox"}, words[1], "is none of picker, openfile, msgbox");
    if (asked == 0) return [text](Player& player) { player.picker_answers.push_back(text); };
    if (asked == 1) {
        return [path = text == u"cancel" ? std::nullopt : std::optional(text)](Player& player) {
            player.file_answers.push_back(path);
        };
    }
    constexpr forms::MessageAnswer kAnswers[] = {forms::MessageAnswer::yes, forms::MessageAnswer::no,
                                                 forms::MessageAnswer::ok};
    const forms::MessageAnswer button = kAnswers[one_of({u"yes", u"no", u"ok"}, text, "is none of yes, no, ok")];
    return [button](Player& player) { player.message_answers.emplace_back(button, player.place); };
}

Action start(const Words& words) {
    if (words.size() > 1 && words[1] != u"frame") refuse(words[1], "is not frame");
    return [frame = words.size() > 1](Player& player) { player.start(frame); };
}

Action click(const Words& words) {
    return [name = words[1]](Player& player) { player.note_unless_done(player.screen.click(name), name); };
}

float read_twips(const std::u16string& word) {
    const auto number = number_of<float>(to_utf8(word));
    if (!number) refuse(word, "is no number of twips");
    return *number;
}

Action press(const Words& words) {
    const std::u16string side = words.size() > 4 ? words[4] : u"left";
    const auto button = one_of({u"left", u"right"}, side, "is neither left nor right") == 0 ? forms::MouseButton::left
                                                                                            : forms::MouseButton::right;
    return [name = words[1], x = read_twips(words[2]), y = read_twips(words[3]), button](Player& player) {
        player.note_unless_done(player.screen.press(name, button, x, y), name);
    };
}

Action set(const Words& words) {
    return [words](Player& player) { player.note_unless_done(player.screen.set(words[1], words[2]), words[1]); };
}

Action close(const Words& /*words*/) {
    return [](Player& player) { player.screen.close(); };
}

Action activate(const Words& /*words*/) {
    return [](Player& player) { player.screen.activate(); };
}

Action retry(const Words& words) {
    return [row = read_count(words[1])](Player& player) {
        constexpr char16_t kList[] = u"lstvDisplayStatus";
        player.note_unless_done(player.screen.choose_from_menu(kList, row, u"Retry!"), kList);
    };
}

// ---- What the user sees -------------------------------------------------------------------------------

/// What is looked at, as it is written, and what is found there.
struct Sight {
    std::u16string name;
    std::function<std::u16string(Player& player)> find;
};

/// CONTROL.PROPERTY, one word, or ROOT\KEY NAME, two.
Sight look(const Words& words, bool in_registry) {
    if (in_registry) {
        return {as_word(words[1]) + u" " + as_word(words[2]),
                [path = parse_registry_path(words[1]), name = words[2]](Player&) { return show_registry(path, name); }};
    }
    const std::size_t point = words[1].find(u'.');
    if (point == words[1].npos || point == 0 || point + 1 == words[1].size())
        refuse(words[1], "is no CONTROL.PROPERTY");
    return {words[1], [control = words[1].substr(0, point), property = words[1].substr(point + 1)](Player& player) {
                return player.screen.property(control, property);
            }};
}

Action show(const Words& words) {
    return [sight = look(words, words.size() == 3)](Player& player) {
        player.host.trace.print(u"show " + sight.name + u" = " + sight.find(player));
    };
}

Action expect(const Words& words) {
    return [sight = look(words, words.size() == 4), expected = words.back()](Player& player) {
        player.expect(sight.name, expected, sight.find(player));
    };
}

Action rows(const Words& words) {
    return [list = words[1]](Player& player) {
        std::size_t number = 0;
        for (const auto& cells : player.screen.rows(list))
            player.host.trace.print(u"row " + digits_of(++number, 10) + u": " + shown_row(cells));
    };
}

constexpr StatementType kStatements[] = {
    {"include FILE", 2, 2, nullptr},
    {"display NAME [KEY=VALUE]...", 2, kAnyNumber, &display},
    {"unit NAME ID slaves=YxX", 4, 4, &hardware},
    {"box NAME TEXT", 3, 3, &hardware},
    {"setting APPLICATION SECTION KEY VALUE", 5, 5, &setting},
    {"registry ROOT\\KEY NAME TYPE VALUE", 5, 5, &registry},
    {"import FILE", 2, 2, &import},
    {"file PATH [hidden]", 2, 3, &file},
    {"copy SOURCE PATH", 3, 3, &copy},
    {"lines PATH LINE...", 3, kAnyNumber, &lines},
    {"image PATH BYTES", 3, 3, &image},
    {"loader PATH", 2, 2, &loader},
    {"fault NAME ID MEMBER fail|raise|replace [at=N]", 5, 6, &fault},
    {"say NAME ID MEMBER TEXT [at=N] [STATEMENT]", 5, kAnyNumber, &say},
    {"answer picker TEXT | answer openfile PATH|cancel | answer msgbox yes|no|ok", 3, 3, &answer},
    {"start [frame]", 1, 2, &start},
    {"click CONTROL", 2, 2, &click},
    {"press CONTROL X Y [left|right]", 4, 5, &press},
    {"set CONTROL VALUE", 3, 3, &set},
    {"close", 1, 1, &close},
    {"activate", 1, 1, &activate},
    {"retry ROW", 2, 2, &retry},
    {"show CONTROL.PROPERTY | show ROOT\\KEY NAME", 2, 3, &show},
    {"expect CONTROL.PROPERTY VALUE | expect ROOT\\KEY NAME VALUE", 3, 4, &expect},
    {"rows CONTROL", 2, 2, &rows},
    {"units", 1, 1, &units},
};

}  // namespace

const StatementType& statement_type(const Words& words) {
    const std::string word = to_utf8(words.front());
    for (const StatementType& type : kStatements) {
        if (type.usage.substr(0, type.usage.find(' ')) != word) continue;
        if (words.size() >= type.fewest_words && words.size() <= type.most_words) return type;
        throw std::invalid_argument("expected " + std::string(type.usage));
    }
    refuse(words.front(), "is no statement");
}

std::string statement_reference() {
    std::string text;
    for (const StatementType& type : kStatements) text += "  " + std::string(type.usage) + "\n";
    return text;
}

}  // namespace vex::sim
