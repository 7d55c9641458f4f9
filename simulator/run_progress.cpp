// How far an update run is.
#include "simulator/run_progress.h"

#include <algorithm>

namespace vex::sim {
namespace {

/// Whether the call is what the run is about for its unit.
bool is_unit_work(Operation operation) noexcept {
    return operation == Operation::ResetAndClear || operation == Operation::DownloadFirmware ||
           operation == Operation::DownloadFirmwareWithLoader;
}

}  // namespace

void RunProgress::begin_run(std::vector<std::u16string> displays) {
    chosen_ = std::move(displays);
    display_number_ = 0;
}

std::size_t RunProgress::displays() const noexcept {
    return std::max({chosen_.size(), display_number_, std::size_t{1}});
}

void RunProgress::follow(const LinkEvent& event) {
    const Operation operation = event.call.operation;
    switch (event.kind) {
        case LinkEvent::Kind::begins:
            if (operation == Operation::OpenConnection) begin_display(event.call.display);
            if (is_unit_work(operation)) begin_unit(event.call);
            break;
        case LinkEvent::Kind::transfers:
            unit_share_ = event.percent / 100.0;
            break;
        case LinkEvent::Kind::says:
            break;
        case LinkEvent::Kind::ends:
            if (is_unit_work(operation) && event.succeeded) unit_share_ = 1;
            break;
    }
}

void RunProgress::begin_display(const std::u16string& name) {
    auto found = std::find(chosen_.begin(), chosen_.end(), name);
    if (found != chosen_.end() && found < chosen_.begin() + static_cast<std::ptrdiff_t>(display_number_)) {
        // Done again, it is a run of its own.
        chosen_ = {name};
        found = chosen_.begin();
    }
    // A display that nobody picked comes by itself, or nobody answers for it.
    display_number_ = found != chosen_.end() ? static_cast<std::size_t>(found - chosen_.begin()) + 1
                                             : std::min(display_number_ + 1, displays());
    unit_number_ = 0;
    unit_share_ = 0;
    const auto known = host_.displays.find(name);
    units_ = known ? std::max<std::size_t>(1, host_.units.ids(host_.displays.at(*known)).size()) : 1;
}

void RunProgress::begin_unit(const Call& call) {
    // A loader goes to the first unit alone.
    if (call.operation == Operation::DownloadFirmwareWithLoader) units_ = 1;
    unit_number_ = std::min(unit_number_ + 1, units_);
    unit_share_ = 0;
}

double RunProgress::run_share() const noexcept {
    if (display_number_ == 0) return 0;
    const double units_done = unit_number_ == 0 ? 0 : static_cast<double>(unit_number_ - 1) + unit_share_;
    const double displays_done = static_cast<double>(display_number_ - 1) + units_done / static_cast<double>(units_);
    return std::min(1.0, displays_done / static_cast<double>(displays()));
}

}  // namespace vex::sim
