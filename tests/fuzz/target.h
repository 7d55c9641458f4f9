// The one function of a fuzz target. Aborts on a finding; what it answers means nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

inline void require(bool condition) {
    if (!condition) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
