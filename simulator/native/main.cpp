// brivola-sim, the simulated host: the native program.
#include <iostream>
#include <vector>

#include "simulator/comparison.h"
#include "simulator/native/interactive.h"

int main(int count, char** words) {
    using namespace vex::sim;
    return run_program(std::vector<std::string>(words + 1, words + count), [](const CommandLine& options) -> int {
        if (options.controls) return print_controls(options);
        if (options.scenarios.empty()) return play_without_scenario(options);
        const auto play = [](const CommandLine& line, const std::string& file, std::ostream& out,
                             std::ostream& errors) { return NativeSession(line).play(file, out, errors); };
        if (options.compare) return compare_scenarios(options, play, std::cout);
        return play(options, options.scenarios.front(), std::cout, std::cerr);
    });
}
