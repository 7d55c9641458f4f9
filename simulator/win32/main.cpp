// brivola-sim, the simulated host: the Windows program.
#include <iostream>

#include "platform/win32/console.h"
#include "simulator/win32/trial.h"

int main() {
    using namespace vex::sim;
    vex::platform::win32::use_plain_streams();
    return run_program(vex::platform::win32::program_arguments(), [](const CommandLine& options) {
        Win32Session session(options);
        return options.scenario ? session.play(*options.scenario, std::cout, std::cerr) : run_trial(session, options);
    });
}
