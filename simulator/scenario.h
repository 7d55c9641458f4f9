// A scenario: what is installed on the simulated host, what its user does, and what must be seen.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vex::sim {

class ScenarioPlayer;

/// One statement, checked as far as it can be before anything runs.
struct Statement {
    std::size_t line = 0;
    /// The control that it acts on or looks at; empty: none.
    std::u16string control;
    /// Raises `std::exception`: the script is bad.
    std::function<void(ScenarioPlayer& player)> run;
};

struct Scenario {
    /// As messages name it.
    std::string file;
    std::vector<Statement> statements;
};

/// Raises `TextError` for the first line that is no statement.
Scenario parse_scenario(std::string file, std::string_view text);

/// A line for each statement: how it is written.
std::string statement_reference();

}  // namespace vex::sim
