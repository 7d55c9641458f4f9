// How many window and graphics handles this process holds.
#pragma once

#include "platform/win32/windows_api.h"

namespace vex::test {

struct HandleCounts {
    unsigned long user = 0;
    unsigned long graphics = 0;

    bool operator==(const HandleCounts&) const = default;
};

/// Windows tells the numbers. Wine does not (it answers 0); there every possible handle is looked at.
HandleCounts count_handles();

}  // namespace vex::test
