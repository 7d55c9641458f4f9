// Numbers from outside in the types that calls take.
#pragma once

#include <utility>

#include "core/runtime_error.h"

namespace vex {

/// The same number as an `Integer`. Raises 6 (overflow) when that cannot hold it.
template <class Integer, class Number>
constexpr Integer narrowed(Number number) {
    if (!std::in_range<Integer>(number)) throw RuntimeError(kOverflow);
    return static_cast<Integer>(number);
}

}  // namespace vex
