// How soon a cancellation reaches the host: the host calls between the user's confirmed click and the command.
#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "tests/proof/rig.h"

namespace vex::bench {
namespace {

/// Enough for sessions before and after the one that is cancelled, with and without slaves.
constexpr std::size_t kDisplays = 3;

struct Figures {
    int clicks = 0;
    /// Clicks that were not confirmed or after which no command came.
    int unheard = 0;
    /// How often so many calls came between.
    std::map<std::size_t, int> calls_between;
};

/// Clicks at every host call at which the user can, in a run of its own each.
Figures click_everywhere(proof::Mode mode) {
    Figures figures;
    proof::Plan plan;
    plan.mode = mode;
    plan.displays = kDisplays;
    plan.retry = false;
    for (auto [call, moment] : proof::moments(proof::play(plan).calls)) {
        moment.cancel = forms::MessageAnswer::yes;
        plan.moment = moment;
        const proof::Outcome outcome = proof::play(plan);
        ++figures.clicks;
        const std::size_t before = outcome.calls_before_cancel.value_or(outcome.calls.size());
        const auto click = outcome.calls.begin() + static_cast<std::ptrdiff_t>(before);
        const auto command = std::find(click, outcome.calls.end(), u"vexDispTrans.CancelTransmission");
        if (command == outcome.calls.end()) {
            ++figures.unheard;
        } else {
            ++figures.calls_between[static_cast<std::size_t>(command - click)];
        }
    }
    return figures;
}

void print_cancellations() {
    std::printf("cancel: host calls between the confirmed click and the cancellation command; goal: none\n");
    std::printf("%-14s %8s %9s %9s  %s\n", "mode", "clicks", "unheard", "maximum", "clicks by calls between");
    for (const proof::Mode mode : proof::kModes) {
        const Figures figures = click_everywhere(mode);
        std::string distribution;
        for (const auto& [calls, clicks] : figures.calls_between) {
            distribution += " " + std::to_string(calls) + ": " + std::to_string(clicks);
        }
        const std::size_t most = figures.calls_between.empty() ? 0 : figures.calls_between.rbegin()->first;
        std::printf("%-14s %8d %9d %9zu %s\n", proof::name_of(mode), figures.clicks, figures.unheard, most,
                    distribution.c_str());
    }
}

}  // namespace
}  // namespace vex::bench

int main() {
    const vex::proof::Machine machine;
    vex::bench::print_cancellations();
    return 0;
}
