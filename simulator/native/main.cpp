// brivola-sim, the simulated host: the native program.
#include <iostream>
#include <set>

#include "platform/native/terminal/screen.h"
#include "simulator/native/terminal_trial.h"

namespace vex::sim {
namespace {

constexpr char kSampleScenario[] = "demo.scn";

/// Comes by every dialog.
constexpr char kTour[] =
    "display A\nanswer picker A\nstart\nclick cmdAbout\nclose\nclick cmdNext\nclick cmdNext\nclick cmdChooseDisplay\n"
    "click cmdNext\nclick cmdFinish\nclick cmdClose";

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

void print_controls_of(const forms::Form& form) {
    constexpr std::size_t kWidth = 100;
    std::cout << form.name() << ':';
    std::size_t column = kWidth;
    for (const forms::Control* control : form.controls()) {
        if (column + control->name().size() + 1 > kWidth) {
            std::cout << "\n   ";
            column = 3;
        }
        std::cout << ' ' << control->name();
        column += control->name().size() + 1;
    }
    std::cout << '\n';
}

int print_controls(const CommandLine& options) {
    CommandLine quiet = options;
    quiet.quiet = true;
    std::set<std::string> seen;
    NativeSession session(quiet);
    session.screen().on_look = [&seen](const Sight& sight) {
        auto* const* const form = std::get_if<forms::Form*>(&sight);
        if (form != nullptr && seen.insert((*form)->name()).second) print_controls_of(**form);
    };
    return session.play_text("the tour", kTour, {}, std::cout, std::cerr);
}

}  // namespace
}  // namespace vex::sim

int main(int count, char** words) {
    using namespace vex::sim;
    const auto play = [](const CommandLine& options, const std::string& file, std::ostream& out, std::ostream& errors) {
        return NativeSession(options).play(file, out, errors);
    };
    return run_program(std::vector<std::string>(words + 1, words + count),
                       {play, play_without_scenario, print_controls});
}
