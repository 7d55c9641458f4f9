// The statements of a scenario by table. Internal to the scenario's sources.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "simulator/scenario_player.h"
#include "simulator/words.h"

namespace vex::sim {

/// What a statement does when its turn comes.
using Action = std::function<void(ScenarioPlayer& player)>;

inline constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

/// How one statement is written and read. `read` gets all words, the statement's own first, in a number that is
/// allowed, and raises `std::invalid_argument` for words that cannot be meant.
struct StatementType {
    std::u16string_view name;
    const char* usage;
    std::size_t fewest_words;
    std::size_t most_words;
    Action (*read)(const Words& words);
    /// Position of the word that names a control, before its first "."; 0: none.
    std::size_t control = 0;
};

std::span<const StatementType> statements_of_host() noexcept;
std::span<const StatementType> statements_of_user() noexcept;

/// Any statement, by its first word.
Action read_statement(const Words& words);

/// Raises `std::invalid_argument`: the word is what is said.
[[noreturn]] void refuse(std::string_view what, const std::u16string& word);
/// A number from 1 to `most`.
std::size_t read_count(const std::u16string& word, std::int64_t most);
/// The value of "KEY=VALUE" where the word has that key.
std::optional<std::u16string> value_of(std::u16string_view key, const std::u16string& word);

}  // namespace vex::sim
