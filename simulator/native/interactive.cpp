// What the program does when no scenario is named.
#include "simulator/native/interactive.h"

#include <iostream>

#include "platform/native/terminal/screen.h"
#include "simulator/native/trial.h"

namespace vex::sim {
namespace {

constexpr char kSampleScenario[] = "demo.scn";

}  // namespace

int play_without_scenario(const CommandLine& options) {
    if (platform::native::terminal::find_terminal(std::cerr)) {
        NativeSession session(options);
        return run_trial(session, options);
    }
    CommandLine pictured = options;
    pictured.pictures = true;
    pictured.quiet = true;
    NativeSession session(pictured);
    return session.play((session.samples_folder() / kSampleScenario).string(), std::cout, std::cerr);
}

}  // namespace vex::sim
