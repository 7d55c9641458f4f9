// Memory that ends: the proof's own operator new, which can refuse.
#pragma once

#include <cstddef>
#include <utility>

namespace vex::proof {

/// How allocations of the plug-in, and of the runtime on its behalf, are counted and refused. Those of the host and of
/// the user are neither.
struct Memory {
    bool counting = false;
    std::size_t counted = 0;
    /// The allocation, counted from 1, that is refused; 0: none.
    std::size_t refused = 0;
    /// Also every one after it.
    bool to_the_end = false;
    /// Allocations of anybody that have not been freed.
    long alive = 0;
    bool plugin_runs = false;
};

inline Memory memory;

/// While it lives, whose code runs.
class Side {
public:
    static constexpr bool host = false, plugin = true;
    explicit Side(bool plugin_runs) noexcept : before_(std::exchange(memory.plugin_runs, plugin_runs)) {}
    Side(const Side&) = delete;
    Side& operator=(const Side&) = delete;
    ~Side() { memory.plugin_runs = before_; }

private:
    bool before_;
};

}  // namespace vex::proof
