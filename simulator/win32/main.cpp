// brivola-sim, the simulated host: the Windows program.
#include <iostream>
#include <stdexcept>

#include "platform/win32/console.h"
#include "simulator/comparison.h"
#include "simulator/win32/trial.h"

int main() {
    using namespace vex::sim;
    vex::platform::win32::use_plain_streams();
    return run_program(vex::platform::win32::program_arguments(), [](const CommandLine& options) -> int {
        if (options.controls) throw std::invalid_argument("controls are printed natively only");
        if (options.scenarios.empty()) {
            Win32Session session(options);
            return run_trial(session, options);
        }
        const auto play = [](const CommandLine& line, const std::string& file, std::ostream& out,
                             std::ostream& errors) { return Win32Session(line).play(file, out, errors); };
        if (options.compare) return compare_scenarios(options, play, std::cout);
        return play(options, options.scenarios.front(), std::cout, std::cerr);
    });
}
