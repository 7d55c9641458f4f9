// The number of the error that an action raises.
#pragma once

#include "core/runtime_error.h"

namespace vex::test {

/// 0: it raised none.
template <class Action>
std::int32_t error_of(Action&& action) {
    try {
        action();
    } catch (const RuntimeError& error) {
        return error.number();
    }
    return 0;
}

}  // namespace vex::test
