// What the program does when no scenario is named.
#include "simulator/native/interactive.h"

#include <iostream>
#include <set>

#include "platform/native/terminal/screen.h"
#include "simulator/native/trial.h"

namespace vex::sim {
namespace {

constexpr char kSampleScenario[] = "demo.scn";

/// Comes by every dialog.
constexpr char kTour[] =
    "display A\nanswer picker A\nstart\nclick cmdAbout\nclose\nclick cmdNext\nclick cmdNext\nclick cmdChooseDisplay\n"
    "click cmdNext\nclick cmdFinish\nclick cmdClose";

class ControlPrinter final : public Onlooker {
public:
    void sees(forms::Form& form) override {
        if (!seen_.insert(form.name()).second) return;
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
    void sees(const forms::MessageBox& /*box*/) override {}
    void sees(const forms::OpenFileRequest& /*request*/) override {}

private:
    static constexpr std::size_t kWidth = 100;
    std::set<std::string> seen_;
};

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

int print_controls(const CommandLine& options) {
    CommandLine quiet = options;
    quiet.quiet = true;
    NativeSession session(quiet);
    ControlPrinter printer;
    session.screen().set_onlooker(&printer);
    const ExitStatus status = session.play_text("the tour", kTour, {}, std::cout, std::cerr);
    session.screen().set_onlooker(nullptr);
    return status;
}

}  // namespace vex::sim
