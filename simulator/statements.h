// The statements of a scenario: what reads each of them. Internal to the scenario's sources.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/scenario_player.h"
#include "simulator/words.h"

namespace vex::sim {

/// What a statement does when its turn comes.
using Action = std::function<void(ScenarioPlayer& player)>;

// Each gets all words of its statement, the statement's own first, in the number that the table allows, and
// raises `std::invalid_argument` for words that cannot be meant.

Action read_display(const Words& words);
Action read_displays(const Words& words);
Action read_unit(const Words& words);
Action read_box(const Words& words);
Action read_setting(const Words& words);
Action read_registry(const Words& words);
Action read_file_statement(const Words& words);
Action read_copy(const Words& words);
Action read_lines(const Words& words);
Action read_image(const Words& words);
Action read_loader(const Words& words);
Action read_fault(const Words& given);
Action read_say(const Words& given);
Action read_during(const Words& words);
Action read_answer(const Words& words);
Action read_pick_all(const Words& words);
Action read_start(const Words& words);
Action read_click(const Words& words);
Action read_press(const Words& words);
Action read_set(const Words& words);
Action read_close(const Words& words);
Action read_activate(const Words& words);
Action read_retry(const Words& words);
Action read_show(const Words& words);
Action read_expect(const Words& words);
Action read_rows(const Words& words);
Action read_units(const Words& words);

/// Any statement, by its first word.
Action read_statement(const Words& words);

// What the readers share.

/// Raises `std::invalid_argument`: the word is what is said.
[[noreturn]] void refuse(std::string_view what, const std::u16string& word);
/// A number from 1 to `most`.
std::size_t read_count(const std::u16string& word, std::int64_t most);
/// The value of "KEY=VALUE" where the word has that key.
std::optional<std::u16string> value_of(std::u16string_view key, const std::u16string& word);

}  // namespace vex::sim
