// How far an update run is, as the host sees it: by what its control does on the links.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/host.h"

namespace vex::sim {

/// `host` must outlive it.
class RunProgress {
public:
    explicit RunProgress(const Host& host) noexcept : host_(host) {}

    /// The user chose displays: a new run.
    void begin_run(std::vector<std::u16string> displays);
    void follow(const LinkEvent& event);

    /// From 1, of `displays`.
    std::size_t display_number() const noexcept { return display_number_; }
    std::size_t displays() const noexcept;
    /// From 1, of `units`; 0 before the first.
    std::size_t unit_number() const noexcept { return unit_number_; }
    std::size_t units() const noexcept { return units_; }
    /// 0 to 1.
    double unit_share() const noexcept { return unit_share_; }
    double run_share() const noexcept;

private:
    void begin_display(const std::u16string& name);
    void begin_unit(const Call& call);

    const Host& host_;
    std::vector<std::u16string> chosen_;
    std::size_t display_number_ = 0;
    std::size_t unit_number_ = 0;
    std::size_t units_ = 1;
    double unit_share_ = 0;
};

}  // namespace vex::sim
