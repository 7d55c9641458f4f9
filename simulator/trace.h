// The trace of a run: what happened, a line each, free of times, addresses and handles.
#pragma once

#include <ostream>
#include <string_view>

namespace vex::sim {

/// Writes UTF-8 lines. `out` must outlive it.
class Trace {
public:
    /// `quiet`: nothing is written but what `print` is given.
    Trace(std::ostream& out, bool quiet) noexcept : out_(out), quiet_(quiet) {}

    /// Something happened.
    void line(std::u16string_view text) {
        if (!quiet_) print(text);
    }
    /// Somebody asked to see this.
    void print(std::u16string_view text);

private:
    std::ostream& out_;
    bool quiet_;
};

}  // namespace vex::sim
