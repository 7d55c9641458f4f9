// The path function that the firmware file selection needs.
#pragma once

#include <string>

namespace vex {

/// Everything before the last backslash, without it; the whole path when there is none. Only backslashes
/// separate folders. Raises kOverflow when the last backslash, or without one the length, lies beyond
/// 32767 characters.
std::u16string GetPathOnly(const std::u16string& path);

}  // namespace vex
