// brivola-sim, the simulated host: the Windows program.
#include <exception>
#include <iostream>

#include "platform/win32/console.h"
#include "simulator/command_line.h"
#include "simulator/win32/win32_session.h"
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
        std::cout << usage();
        return kPassed;
    }
    try {
        const std::filesystem::path sample = Win32Session::program_folder() / "samples" / "demo.scn";
        return Win32Session(options).play(options.scenario.value_or(sample.string()), std::cout, std::cerr);
    } catch (const TextError& error) {
        std::cerr << error.what() << '\n';
    } catch (const std::exception& error) {
        std::cerr << "brivola-sim: " << error.what() << '\n';
    }
    return kBadUsage;
}
