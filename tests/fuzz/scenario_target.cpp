// Fuzz target: any text as a scenario, played to its end against the plug-in. Whatever it says, dialogs and
// objects are gone afterwards; a bad one is refused with its place.
#include <filesystem>
#include <sstream>
#include <string>

#include "simulator/native/native_session.h"
#include "simulator/words.h"
#include "tests/fuzz/target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vex::sim;
    CommandLine options;
    options.plugin = VEX_PLUGIN_LIBRARY;
    std::ostringstream out, errors;
    try {
        NativeSession(options).play_text("a.scn", std::string(reinterpret_cast<const char*>(data), size),
                                         VEX_SCENARIOS, out, errors);
    } catch (const TextError&) {
        // Refused before anything ran.
        return 0;
    }
    const std::string messages = errors.str();
    require(messages.find("not released") == messages.npos && messages.find("living objects") == messages.npos);
    return 0;
}
