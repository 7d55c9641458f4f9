// What the library's features have in their resources.
#pragma once

#include <cstdint>

namespace vex::plugin {

/// The icon of the first feature; further features would have the numbers that follow. No other icon of the
/// library has a number, so that an index without a feature finds no picture.
constexpr std::int16_t kFirstIcon = 101;

}  // namespace vex::plugin
