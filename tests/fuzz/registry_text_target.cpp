// Fuzz target: any bytes as a registry's file. What is read must come out the same when it is written and read
// again, also in UTF-16, and when it takes the place of what was read before; what is damaged must be told with a line
// of the text.
#include <algorithm>
#include <string>

#include "core/unicode.h"
#include "platform/native/registry_store.h"
#include "tests/fuzz/target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vex::platform::native;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    RegistryKeys keys;
    try {
        keys.apply(read_registry(bytes));
    } catch (const RegistryDamage& damage) {
        // In UTF-16, too, each break has its byte.
        const auto breaks = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n'));
        require(damage.line() >= 1 && damage.line() <= breaks + 2);
        return 0;
    }
    const std::string text = keys.text();
    RegistryKeys again;
    again.apply(read_registry(text));
    require(again.text() == text);

    const std::vector<std::uint8_t> wide = data_of(u'\xFEFF' + vex::from_utf8(text));
    RegistryKeys exported;
    exported.apply(read_registry({reinterpret_cast<const char*>(wide.data()), wide.size()}));
    require(exported.text() == text);

    static RegistryKeys lasting;
    lasting.take(again);
    require(lasting.text() == text);
    return 0;
}
