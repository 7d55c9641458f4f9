// brivola-sim, the simulated host: the native program.
#include <iostream>
#include <vector>

#include "simulator/native/interactive.h"

int main(int count, char** words) {
    using namespace vex::sim;
    return run_program(std::vector<std::string>(words + 1, words + count), [](const CommandLine& options) {
        if (!options.scenario) return play_without_scenario(options);
        return int{NativeSession(options).play(*options.scenario, std::cout, std::cerr)};
    });
}
