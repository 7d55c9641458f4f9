// Fuzz target: any bytes as S-records.
#include <string_view>

#include "simulator/firmware_image.h"
#include "tests/fuzz/target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        vex::sim::check_motorola_image({reinterpret_cast<const char*>(data), size}, u"file");
    } catch (const vex::sim::ImageError&) {
    }
    return 0;
}
