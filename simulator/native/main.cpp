// brivola-sim, the simulated host: the native program.
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "simulator/command_line.h"
#include "simulator/native/interactive.h"
#include "simulator/words.h"

int main(int count, char** words) {
    using namespace vex::sim;
    CommandLine options;
    try {
        options = parse_command_line(std::vector<std::string>(words + 1, words + count));
    } catch (const std::exception& error) {
        std::cerr << "brivola-sim: " << error.what() << "; try --help\n";
        return kBadUsage;
    }
    if (options.help) {
        std::cout << usage() << std::flush;
        return std::cout ? kPassed : kFailed;
    }
    try {
        if (!options.scenario) return play_without_scenario(options);
        return NativeSession(options).play(*options.scenario, std::cout, std::cerr);
    } catch (const TextError& error) {
        std::cerr << error.what() << '\n';
    } catch (const std::exception& error) {
        std::cerr << "brivola-sim: " << message_of(error) << '\n';
    }
    return kBadUsage;
}
