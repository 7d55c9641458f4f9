// A scenario: what is installed on the simulated host, what its user does, and what must be seen.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vex::sim {

class ScenarioPlayer;

/// Where a statement stands.
struct Place {
    std::shared_ptr<const std::string> file;
    std::size_t line = 0;
};

/// One statement, checked as far as it can be before anything runs.
struct Statement {
    Place place;
    /// The control that it acts on or looks at; empty: none.
    std::u16string control;
    /// Raises `std::exception`: the script is bad.
    std::function<void(ScenarioPlayer& player)> run;
};

struct Scenario {
    std::vector<Statement> statements;
};

/// `file`: the scenario's name in messages. `folder`: where the files that it includes lie. Raises `TextError` for the
/// first line that is no statement.
Scenario parse_scenario(const std::string& file, std::string_view text, const std::filesystem::path& folder = {});

/// A line for each statement: how it is written.
std::string statement_reference();

}  // namespace vex::sim
