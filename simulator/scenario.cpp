// Reads scenarios.
#include "simulator/scenario.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "core/unicode.h"
#include "simulator/statements.h"

namespace vex::sim {
namespace {

constexpr std::u16string_view kInclude = u"include";
constexpr char kIncludeUsage[] = "include FILE";

const StatementType& type_of(const Words& words) {
    for (const auto& statements : {statements_of_host(), statements_of_user()}) {
        const auto type = std::ranges::find(statements, words.front(), &StatementType::name);
        if (type == statements.end()) continue;
        if (words.size() < type->fewest_words || words.size() > type->most_words) {
            throw std::invalid_argument(std::string("expected ") + type->usage);
        }
        return *type;
    }
    refuse("no statement", words.front());
}

/// Reads a scenario and the files that it includes, statement by statement.
struct Parser {
    Scenario& scenario;
    const std::filesystem::path& folder;

    void read(const std::string& file, std::string_view text, int depth) {
        const auto name = std::make_shared<const std::string>(file);
        read_lines(file, text, {}, [&](const Words& words, std::size_t line) {
            if (words.front() == kInclude) return include(words, depth);
            scenario.statements.push_back({{name, line}, control_of(words), read_statement(words)});
        });
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
    for (const auto& statements : {statements_of_host(), statements_of_user()}) {
        for (const StatementType& type : statements) text += std::string("  ") + type.usage + "\n";
    }
    return text;
}

}  // namespace vex::sim
