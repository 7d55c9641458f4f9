// The time that simulated links take.
#include "simulator/pace.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace vex::sim {
namespace {

using Seconds = std::chrono::duration<double>;

constexpr Seconds kConnecting{0.6};
constexpr Seconds kAsking{0.3};
constexpr Seconds kClosing{0.4};
constexpr Seconds kResetting{0.9};
constexpr Seconds kReading{0.5};
/// So that a sample program takes about four seconds.
constexpr double kBytesPerSecond = 20'000;
/// How soon a key is answered, and how often the screen may change.
constexpr Seconds kSlice{0.015};

}  // namespace

void Pace::follow(const LinkEvent& event) {
    const Operation operation = event.call.operation;
    switch (event.kind) {
        case LinkEvent::Kind::begins:
            if (operation == Operation::CancelTransmission) cancelled_ = true;
            if (operation == Operation::OpenConnection) cancelled_ = false;
            transferring_ = false;
            if (operation == Operation::OpenConnection) wait(kConnecting);
            if (operation == Operation::GetSignInfo) wait(kAsking);
            if (operation == Operation::CloseConnection) wait(kClosing);
            break;
        case LinkEvent::Kind::transfers:
            transferring_ = true;
            wait(Seconds(static_cast<double>(event.bytes) / kBytesPerSecond));
            break;
        case LinkEvent::Kind::says:
            if (!std::exchange(transferring_, false))
                wait(operation == Operation::ResetAndClear ? kResetting : kReading);
            break;
        case LinkEvent::Kind::ends:
            break;
    }
}

void Pace::wait(Seconds usual) {
    // What happens while it waits, the user's answers among it, happens at once.
    if (std::exchange(waiting_, true)) return;
    const auto end = std::chrono::steady_clock::now() + usual / speed_;
    while (!cancelled_ && !ended_()) {
        toolkit_.pump_messages();
        const Seconds left = end - std::chrono::steady_clock::now();
        if (left <= Seconds::zero()) break;
        std::this_thread::sleep_for(std::min(left, kSlice));
    }
    waiting_ = false;
}

}  // namespace vex::sim
