// brivola-sim, the simulated host: the Windows program.
#include <exception>
#include <iostream>

#include "platform/win32/console.h"
#include "simulator/command_line.h"
#include "simulator/win32/trial.h"
#include "simulator/words.h"

int main() {
    using namespace vex::sim;
    vex::platform::win32::use_plain_streams();
    CommandLine options;
    try {
        options = parse_command_line(vex::platform::win32::program_arguments());
    } catch (const std::exception& error) {
        std::cerr << "brivola-sim: " << error.what() << "; try --help\n";
        return kBadUsage;
    }
    if (options.help) {
        std::cout << usage() << std::flush;
        return std::cout ? kPassed : kFailed;
    }
    try {
        Win32Session session(options);
        return options.scenario ? session.play(*options.scenario, std::cout, std::cerr) : run_trial(session, options);
    } catch (const TextError& error) {
        std::cerr << error.what() << '\n';
    } catch (const std::exception& error) {
        std::cerr << "brivola-sim: " << message_of(error) << '\n';
    }
    return kBadUsage;
}
