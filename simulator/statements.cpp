// The statements of a scenario: each by what it does, and how all are written at the end.
#include <algorithm>
#include <functional>
#include <iterator>
#include <limits>
#include <utility>

#include "core/digits.h"
#include "core/unicode.h"
#include "simulator/controls.h"
#include "simulator/firmware_image.h"
#include "simulator/scenario.h"

namespace vex::sim {
namespace {

using Player = ScenarioPlayer*;

constexpr std::int64_t kAnyCount = std::numeric_limits<std::int32_t>::max();
constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

/// A number from 1 to `most`.
std::size_t read_count(const std::u16string& word, std::int64_t most = kAnyCount) {
    const auto number = parse_number(word, 1, most);
    if (!number) refuse(word, "is no number from 1 to " + std::to_string(most));
    return static_cast<std::size_t>(*number);
}

/// The value of "KEY=VALUE" where the word has that key.
std::optional<std::u16string> value_of(const std::u16string& key, const std::u16string& word) {
    return word.starts_with(key + u'=') ? std::optional(word.substr(key.size() + 1)) : std::nullopt;
}

/// The position of the word among those that are allowed there.
std::size_t one_of(std::initializer_list<std::u16string_view> allowed, const std::u16string& word, const char* what) {
    const auto* const found = std::ranges::find(allowed, word);
    if (found == allowed.end()) refuse(word, what);
    return static_cast<std::size_t>(found - allowed.begin());
}

// ---- Displays -----------------------------------------------------------------------------------------

/// Puts a number into the place of each "{n}".
std::u16string numbered(std::u16string text, const std::u16string& digits) {
    constexpr std::u16string_view kPlace = u"{n}";
    for (std::size_t at = text.find(kPlace); at != text.npos; at = text.find(kPlace, at + digits.size()))
        text.replace(at, kPlace.size(), digits);
    return text;
}

void display(const Words& words, Player player) {
    Display display = read_display(words);
    if (player != nullptr) player->host.put_display(std::move(display));
}

void displays(const Words& words, Player player) {
    constexpr std::int64_t kMostDisplays = 1'000'000;
    const std::size_t count = read_count(words[1], kMostDisplays);
    for (std::size_t number = 1; number <= (player == nullptr ? 1 : count); ++number) {
        const std::u16string digits = digits_of(number, 10);
        Words one(words.begin() + 1, words.end());
        for (std::u16string& word : one) word = numbered(word, digits);
        one[1] = words[2] + digits;
        display(one, player);
    }
}

void unit(const Words& words, Player player) {
    const std::int16_t id = parse_id(words[2]);
    const auto slaves = value_of(u"slaves", words[3]);
    if (!slaves && words[3] != u"absent") refuse(words[3], "is neither slaves=YxX nor absent");
    const SlaveCounts counts = slaves ? parse_slaves(*slaves) : SlaveCounts();
    if (player == nullptr) return;
    const std::u16string name = player->display(words[1]).name;
    slaves ? player->host.units.set_slaves(name, id, counts) : player->host.units.set_absent(name, id);
}

void box(const Words& words, Player player) {
    if (player != nullptr) player->host.units.add_box(player->display(words[1]).name, words[2]);
}

void units(const Words& /*words*/, Player player) {
    if (player == nullptr) return;
    const Host& host = player->host;
    for (const Display& display : host.displays) {
        for (const std::int16_t id : host.units.ids(display)) {
            host.trace.print(u"unit " + in_quotes(display.name) + u" " + decimal_text(id) + u": " +
                             describe(host.units.content(display.name, id)));
        }
    }
}

// ---- The computer -------------------------------------------------------------------------------------

void setting(const Words& words, Player player) {
    const RegistryPath path{.key = u"Software\\Norvan\\" + words[1] + u"\\" + words[2]};
    if (player != nullptr) player->registry.write(path, words[3], u"sz", words[4]);
}

void registry(const Words& words, Player player) {
    const RegistryPath path = parse_registry_path(words[1]);
    if (player != nullptr) player->registry.write(path, words[2], words[3], words[4]);
}

void import(const Words& words, Player player) {
    if (player != nullptr) player->registry.import(to_utf8(words[1]), read_file(player->source_file(words[1])));
}

void file(const Words& words, Player player) {
    const bool folder =
        words.size() > 2 && one_of({u"hidden", u"folder"}, words[2], "is neither hidden nor folder") == 1;
    if (player == nullptr) return;
    if (folder) {
        std::filesystem::create_directories(player->host.machine.writable_path(words[1]));
        return;
    }
    player->put_file(words[1], "");
    if (words.size() > 2) player->host.machine.hide(words[1]);
}

void copy(const Words& words, Player player) {
    if (player != nullptr) player->put_file(words[2], read_file(player->source_file(words[1])));
}

void lines(const Words& words, Player player) {
    std::string text;
    for (std::size_t i = 2; i < words.size(); ++i) text += to_utf8(words[i]) + "\n";
    if (player != nullptr) player->put_file(words[1], text);
}

void image(const Words& words, Player player) {
    constexpr std::int64_t kLargestImage = 1 << 20;
    const std::size_t size = read_count(words[2], kLargestImage);
    if (player != nullptr) player->put_file(words[1], make_motorola_image(size));
}

void loader(const Words& words, Player player) {
    const bool line = one_of({u"line", u"server"}, words[2], "is neither line nor server") == 0;
    if (player != nullptr) player->put_file(words[1], make_loader_image(line ? LoaderKind::line : LoaderKind::server));
}

// ---- The links ----------------------------------------------------------------------------------------

/// NAME ID MEMBER, from the second word, and "at=N", which is taken off the end of more than the fewest words.
CallPattern read_pattern(Words& words, std::size_t fewest_words) {
    CallPattern pattern;
    if (words[1] != u"*") pattern.display = words[1];
    if (words[2] != u"*") pattern.id = parse_id(words[2]);
    pattern.operation = parse_operation(words[3]);
    if (const auto at = words.size() > fewest_words ? value_of(u"at", words.back()) : std::nullopt) {
        pattern.at = static_cast<std::int64_t>(read_count(*at));
        words.pop_back();
    }
    return pattern;
}

void fault(const Words& given, Player player) {
    Words words = given;
    const CallPattern pattern = read_pattern(words, 5);
    if (words.size() != 5) refuse(words.back(), "is not at=N");
    constexpr FaultKind kKinds[] = {FaultKind::fail, FaultKind::raise, FaultKind::replace};
    const FaultKind kind = kKinds[one_of({u"fail", u"raise", u"replace"}, words[4], "is none of fail, raise, replace")];
    if ((kind == FaultKind::fail && !answers_success(pattern.operation)) ||
        (kind == FaultKind::replace && pattern.operation != Operation::OpenConnection))
        refuse(words[4], "is nothing that " + to_utf8(words[3]) + " does");
    if (player == nullptr) return;
    if (pattern.display) static_cast<void>(player->display(*pattern.display));
    player->host.links.add_fault(pattern, kind);
}

/// The control says a text; the reaction to it stands behind the text.
void say_and_react(const CallPattern& pattern, const Words& words, const Words& reaction, Player player) {
    if (!speaks(pattern.operation)) refuse(words[3], "is no member of the transmission control");
    if (!reaction.empty() && player == nullptr) statement_type(reaction).play(reaction, nullptr);
    if (player != nullptr) player->say(pattern, words[4], reaction);
}

void say(const Words& given, Player player) {
    Words words = given;
    const CallPattern pattern = read_pattern(words, 5);
    if (words.size() > 6) refuse(words.back(), "is not at=N");
    say_and_react(pattern, words, words.size() == 6 ? Words{u"click", words[5]} : Words(), player);
}

void during(const Words& given, Player player) {
    Words words = given;
    const CallPattern pattern = read_pattern(words, kAnyNumber);
    if (words[5] == u"during" || words[5] == u"include") refuse(words[5], "is no statement for the middle of a call");
    say_and_react(pattern, words, Words(words.begin() + 5, words.end()), player);
}

// ---- What the user does -------------------------------------------------------------------------------

void answer(const Words& words, Player player) {
    const std::size_t what =
        one_of({u"picker", u"openfile", u"msgbox"}, words[1], "is none of picker, openfile, msgbox");
    constexpr forms::MessageAnswer kAnswers[] = {forms::MessageAnswer::yes, forms::MessageAnswer::no,
                                                 forms::MessageAnswer::ok};
    const std::size_t button = what == 2 ? one_of({u"yes", u"no", u"ok"}, words[2], "is none of yes, no, ok") : 0;
    if (player == nullptr) return;
    if (what == 0) player->picker_answers.push_back(words[2]);
    if (what == 1) player->file_answers.push_back(words[2] == u"cancel" ? std::nullopt : std::optional(words[2]));
    if (what == 2) player->message_answers.emplace_back(kAnswers[button], player->place);
}

void pick_all(const Words& /*words*/, Player player) {
    if (player == nullptr) return;
    std::u16string names;
    for (const Display& display : player->host.displays) names += (names.empty() ? u"" : u",") + display.name;
    player->picker_answers.push_back(std::move(names));
}

void start(const Words& words, Player player) {
    if (words.size() > 1 && words[1] != u"frame") refuse(words[1], "is not frame");
    if (player != nullptr) player->start(words.size() > 1);
}

void click(const Words& words, Player player) {
    if (player != nullptr) player->note_unless_done(player->screen.click(words[1]), words[1]);
}

float read_twips(const std::u16string& word) {
    const auto number = number_of<float>(to_utf8(word));
    if (!number) refuse(word, "is no number of twips");
    return *number;
}

void press(const Words& words, Player player) {
    const float x = read_twips(words[2]);
    const float y = read_twips(words[3]);
    const std::u16string name = words.size() > 4 ? words[4] : u"left";
    const auto button = one_of({u"left", u"right"}, name, "is neither left nor right") == 0 ? forms::MouseButton::left
                                                                                            : forms::MouseButton::right;
    if (player != nullptr) player->note_unless_done(player->screen.press(words[1], button, x, y), words[1]);
}

void set(const Words& words, Player player) {
    if (player != nullptr) player->note_unless_done(player->screen.set(words[1], words[2]), words[1]);
}

void close(const Words& /*words*/, Player player) {
    if (player != nullptr) player->screen.close();
}

void activate(const Words& /*words*/, Player player) {
    if (player != nullptr) player->screen.activate();
}

void retry(const Words& words, Player player) {
    const std::u16string list = u"lstvDisplayStatus";
    const std::size_t row = read_count(words[1]);
    if (player != nullptr) player->note_unless_done(player->screen.choose_from_menu(list, row, u"Retry!"), list);
}

// ---- What the user sees -------------------------------------------------------------------------------

/// What is looked at, as it is written, and what is found there.
struct Sight {
    std::u16string name;
    std::u16string property;
    std::u16string found;
};

/// CONTROL.PROPERTY, one word, or ROOT\KEY NAME, two. Nothing is found without a player.
Sight look(const Words& words, bool in_registry, Player player) {
    Sight sight;
    if (in_registry) {
        const RegistryPath path = parse_registry_path(words[1]);
        sight.name = as_word(words[1]) + u" " + as_word(words[2]);
        if (player != nullptr) sight.found = player->registry.show(path, words[2]);
        return sight;
    }
    sight.name = words[1];
    const std::size_t point = words[1].find(u'.');
    if (point == words[1].npos || point == 0 || point + 1 == words[1].size())
        refuse(words[1], "is no CONTROL.PROPERTY");
    sight.property = words[1].substr(point + 1);
    if (player != nullptr) sight.found = player->screen.property(words[1].substr(0, point), sight.property);
    return sight;
}

void show(const Words& words, Player player) {
    const Sight sight = look(words, words.size() == 3, player);
    if (player != nullptr) player->host.trace.print(u"show " + sight.name + u" = " + sight.found);
}

void expect(const Words& words, Player player) {
    const auto [name, property, found] = look(words, words.size() == 4, player);
    // Texts are compared exactly; words such as True and digits such as those of a colour in any case.
    const bool is_word = property == u"Enabled" || property == u"Visible" || property == u"Value" ||
                         property == u"FillColor" || property.ends_with(u".ForeColor");
    const bool equal = is_word ? equal_ignoring_case(words.back(), found) : words.back() == found;
    if (player != nullptr) player->expect(name, words.back(), found, equal);
}

void rows(const Words& words, Player player) {
    if (player == nullptr) return;
    std::size_t number = 0;
    for (const auto& cells : player->screen.rows(words[1]))
        player->host.trace.print(u"row " + digits_of(++number, 10) + u": " + shown_row(cells));
}

constexpr StatementType kStatements[] = {
    {"include FILE", 2, 2, nullptr},
    {"display NAME [KEY=VALUE]...", 2, kAnyNumber, &display},
    {"displays COUNT PREFIX [KEY=VALUE]...", 3, kAnyNumber, &displays},
    {"unit NAME ID slaves=YxX|absent", 4, 4, &unit},
    {"box NAME TEXT", 3, 3, &box},
    {"setting APPLICATION SECTION KEY VALUE", 5, 5, &setting},
    {"registry ROOT\\KEY NAME TYPE VALUE", 5, 5, &registry},
    {"import FILE", 2, 2, &import},
    {"file PATH [hidden|folder]", 2, 3, &file},
    {"copy SOURCE PATH", 3, 3, &copy},
    {"lines PATH LINE...", 3, kAnyNumber, &lines},
    {"image PATH BYTES", 3, 3, &image},
    {"loader PATH line|server", 3, 3, &loader},
    {"fault NAME ID MEMBER fail|raise|replace [at=N]", 5, 6, &fault},
    {"say NAME ID MEMBER TEXT [CONTROL] [at=N]", 5, 7, &say},
    {"during NAME ID MEMBER TEXT STATEMENT...", 6, kAnyNumber, &during},
    {"answer picker TEXT | answer openfile PATH|cancel | answer msgbox yes|no|ok", 3, 3, &answer},
    {"pick-all", 1, 1, &pick_all},
    {"start [frame]", 1, 2, &start},
    {"click CONTROL", 2, 2, &click, 1},
    {"press CONTROL X Y [left|right]", 4, 5, &press, 1},
    {"set CONTROL VALUE", 3, 3, &set, 1},
    {"close", 1, 1, &close},
    {"activate", 1, 1, &activate},
    {"retry ROW", 2, 2, &retry},
    {"show CONTROL.PROPERTY | show ROOT\\KEY NAME", 2, 3, &show, 1},
    {"expect CONTROL.PROPERTY VALUE | expect ROOT\\KEY NAME VALUE", 3, 4, &expect, 1},
    {"rows CONTROL", 2, 2, &rows, 1},
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
