// Fuzz target: any bytes as the simulated host's files, and as firmware. What is read of a file can be written and read
// again.
#include <string_view>

#include "simulator/displays.h"
#include "simulator/firmware_image.h"
#include "tests/fuzz/target.h"

namespace {

using namespace vex::sim;

/// Refuses the text with a place, or reads it.
template <class File>
void read(std::string_view text) {
    try {
        const std::string written = File::parse("file", text).text();
        require(File::parse("file", written).text() == written);
    } catch (const TextError& error) {
        require(std::string_view(error.what()).starts_with("file:"));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    read<Displays>(text);
    read<Units>(text);
    try {
        check_motorola_image(text, u"file");
    } catch (const ImageError&) {
        // Refused.
    }
    return 0;
}
