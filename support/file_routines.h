// FileRoutines: the path function that the firmware file selection needs.
#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "core/runtime_error.h"

namespace vex {

/// Everything before the last backslash, without it; the whole path when there is none. Only backslashes separate
/// folders. Raises kOverflow when the last backslash, or without one the length, lies beyond 32767 characters.
inline std::u16string GetPathOnly(const std::u16string& path) {
    // Positions count from 1 and are 16-bit, and callers were written to expect the overflow.
    constexpr std::size_t kLastPosition = std::numeric_limits<std::int16_t>::max();
    const std::size_t backslash = path.rfind(u'\\');
    const bool found = backslash != std::u16string::npos;
    if ((found ? backslash + 1 : path.size()) > kLastPosition) throw RuntimeError(kOverflow);
    return found ? path.substr(0, backslash) : path;
}

}  // namespace vex
