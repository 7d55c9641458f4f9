// A whole update in one process: simulated host, real dialogs, a scripted user. Each run stands alone. Its memory may
// end, where a program has an operator new of its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "com/variant.h"
#include "forms/scripted_toolkit.h"
#include "simulator/host.h"

namespace vex::proof {

enum class Mode { reset, firmware, flash_loader, external_tool };

inline constexpr Mode kModes[] = {Mode::reset, Mode::firmware, Mode::flash_loader, Mode::external_tool};

const char* name_of(Mode mode) noexcept;

/// The number of the errors that tests raise.
inline constexpr std::int32_t kRaisedNumber = 1234;

/// What becomes of a call, "Class.Member": nothing: it happens; a value: it does not, and is answered so; an error that
/// is thrown here: it raises that one. Of a creation, "new Class": an error makes it fail.
using Meddle = std::function<std::optional<com::Variant>(const std::u16string& call)>;

/// A message during the `at`-th call of an operation, and what the user does about it.
struct Moment {
    sim::Operation operation;
    std::int64_t at;
    /// Clicks Cancel while it is shown, and answers the question so; nothing: only reads it.
    std::optional<forms::MessageAnswer> cancel;
};

/// For every call of the transmission control in `calls`: its index, and the moment at which a message is shown during
/// it. These are the moments at which a session looks whether the user has clicked.
std::vector<std::pair<std::size_t, Moment>> moments(const std::vector<std::u16string>& calls);

struct Plan {
    Mode mode = Mode::reset;
    /// 1 to 3 for the interruption tests; the first of three has slaves, the second is on the network.
    std::size_t displays = 1;
    /// Until the run is over.
    Meddle meddle;
    std::optional<Moment> moment;
    /// The host's operations answer True whatever became of them.
    bool heedless = false;
    /// Opens the wizard over the toolkit in the plug-in's place; empty: its dialogs themselves.
    std::function<void(forms::Toolkit& toolkit)> start;
    /// After the run, each row that was not updated is tried again without any interruption.
    bool retry = true;
};

struct Outcome {
    /// Automation error that the start ended with; 0: none.
    std::int32_t error = 0;
    /// The status column after the run; empty when there was no run to look at.
    std::vector<std::u16string> rows;
    /// The status column after each row that was not updated has been tried again.
    std::vector<std::u16string> rows_after_retry;
    /// For each display: what its units hold after the run.
    std::vector<std::vector<std::u16string>> units;
    /// Every host call in order, "Class.Member" or "new Class"; those of the retries are not among them.
    std::vector<std::u16string> calls;
    /// How many of `calls` had begun when the user confirmed a cancel.
    std::optional<std::size_t> calls_before_cancel;
    /// Calls of the transmission control from the confirmed cancel to the end of that session.
    std::vector<std::u16string> calls_after_cancel;
    /// Programs started.
    std::vector<std::u16string> programs;
    /// The host's and the plug-in's objects that were left over.
    long host_objects = 0;
    long plugin_objects = 0;
};

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

/// Plays the plan on a simulated machine that has the files that plans need.
Outcome play(const Plan& plan);

}  // namespace vex::proof
