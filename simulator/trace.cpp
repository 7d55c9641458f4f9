// The trace of a run.
#include "simulator/trace.h"

#include "core/unicode.h"

namespace vex::sim {

void Trace::print(std::u16string_view text) { out_ << to_utf8(text) << '\n'; }

}  // namespace vex::sim
