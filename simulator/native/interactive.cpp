// What the program does when no scenario is named: it plays the sample scenario.
#include "simulator/native/interactive.h"

namespace vex::sim {

ExitStatus play_without_scenario(const CommandLine& options) {
    return NativeSession(options).play((NativeSession::program_folder() / "samples" / "demo.scn").string());
}

}  // namespace vex::sim
