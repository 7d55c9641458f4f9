// The time that simulated links take, so that a person can watch.
#pragma once

#include <chrono>
#include <functional>

#include "forms/toolkit.h"
#include "simulator/link_script.h"

namespace vex::sim {

/// Waits where a real link would, and serves the user meanwhile. `toolkit` must outlive it.
class Pace {
public:
    /// `speed`: how many times as fast as usual. `ended`: whether the user has left, who waits for nothing more.
    Pace(forms::Toolkit& toolkit, double speed, std::function<bool()> ended)
        : toolkit_(toolkit), speed_(speed), ended_(std::move(ended)) {}

    void follow(const LinkEvent& event);

private:
    void wait(std::chrono::duration<double> usual);

    forms::Toolkit& toolkit_;
    double speed_;
    std::function<bool()> ended_;
    /// Who cancels waits for nothing more.
    bool cancelled_ = false;
    bool waiting_ = false;
    /// What the control says of a transfer is read while the next part is on its way.
    bool transferring_ = false;
};

}  // namespace vex::sim
