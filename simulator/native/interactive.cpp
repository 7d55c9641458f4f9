// What the program does when no scenario is named: it plays the sample scenario.
#include "simulator/native/interactive.h"

#include <iostream>

namespace vex::sim {

ExitStatus play_without_scenario(const CommandLine& options) {
    const std::filesystem::path sample = NativeSession::program_folder() / "samples" / "demo.scn";
    return NativeSession(options).play(sample.string(), std::cout, std::cerr);
}

}  // namespace vex::sim
