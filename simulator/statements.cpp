// The statements of a scenario by table: how each is written, and who reads it.
#include "simulator/statements.h"

#include <filesystem>
#include <limits>
#include <stdexcept>

#include "core/unicode.h"

namespace vex::sim {
namespace {

/// How one statement is written and read. `read` gets all words, the statement's own first, and raises
/// `std::invalid_argument`.
struct StatementType {
    std::u16string_view name;
    const char* usage;
    std::size_t fewest_words;
    std::size_t most_words;
    Action (*read)(const Words& words);
    /// Position of the word that names a control, before its first "."; 0: none.
    std::size_t control = 0;
};

constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();
constexpr std::u16string_view kInclude = u"include";
constexpr char kIncludeUsage[] = "include FILE";

constexpr StatementType kStatementTypes[] = {
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
    {u"loader", "loader PATH line|server", 3, 3, &read_loader},
    {u"fault", "fault NAME ID MEMBER fail|raise|replace [at=N]", 5, 6, &read_fault},
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

const StatementType& type_of(const Words& words) {
    for (const StatementType& type : kStatementTypes) {
        if (type.name != words.front()) continue;
        if (words.size() < type.fewest_words || words.size() > type.most_words) {
            throw std::invalid_argument(std::string("expected ") + type.usage);
        }
        return type;
    }
    refuse("no statement", words.front());
}

/// Reads a scenario and the files that it includes, statement by statement.
struct Parser {
    Scenario& scenario;
    const std::filesystem::path& folder;

    void read(const std::string& file, std::string_view text, int depth) {
        const auto name = std::make_shared<const std::string>(file);
        const std::vector<std::u16string> lines = split_lines(file, text);
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
        const std::filesystem::path included = folder / std::filesystem::path(words[1]);
        std::string text;
        try {
            text = read_file(included);
        } catch (const std::exception& error) {
            throw std::invalid_argument(error.what());
        }
        read(included.string(), text, depth + 1);
    }

    static std::u16string control_of(const Words& words) {
        const StatementType& type = type_of(words);
        if (type.control == 0 || is_registry_path(words[type.control])) return {};
        return words[type.control].substr(0, words[type.control].find(u'.'));
    }
};

}  // namespace

void refuse(std::string_view what, const std::u16string& word) {
    throw std::invalid_argument(to_utf8(in_quotes(word)) + " is " + std::string(what));
}

std::size_t read_count(const std::u16string& word, std::int64_t most) {
    const auto number = parse_number(word, 1, most);
    if (!number) refuse("no number from 1 to " + std::to_string(most), word);
    return static_cast<std::size_t>(*number);
}

std::optional<std::u16string> value_of(std::u16string_view key, const std::u16string& word) {
    if (word.substr(0, key.size()) != key || word.size() <= key.size() || word[key.size()] != u'=') return std::nullopt;
    return word.substr(key.size() + 1);
}

Action read_statement(const Words& words) { return type_of(words).read(words); }

Scenario parse_scenario(const std::string& file, std::string_view text, const std::filesystem::path& folder) {
    Scenario scenario;
    Parser{scenario, folder}.read(file, text, 0);
    return scenario;
}

std::string statement_reference() {
    std::string text = std::string("  ") + kIncludeUsage + "\n";
    for (const StatementType& type : kStatementTypes) text += std::string("  ") + type.usage + "\n";
    return text;
}

}  // namespace vex::sim
