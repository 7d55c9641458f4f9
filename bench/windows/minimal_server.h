// The identity of the minimal server.
#pragma once

#include <cstddef>

#include "com/com.h"

namespace vex::bench {

inline constexpr GUID kMinimalClass = {0x6F3B9A52, 0x1C0D, 0x4E7B, {0x9A, 0x41, 0x5D, 0x2E, 0x83, 0xB7, 0x16, 0xC4}};
/// What the server registers: the class's name in one key, its file and its threading model in another.
inline constexpr std::size_t kMinimalValues = 3;
inline constexpr std::size_t kMinimalKeys = 2;

}  // namespace vex::bench
