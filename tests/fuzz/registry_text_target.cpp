// Fuzz target: any bytes as a registry's file. What is read must come out the same when it is written and
// read again, and what is damaged must be told with a line of the text.
#include <algorithm>
#include <cstdlib>
#include <string>

#include "platform/native/registry_text.h"
#include "platform/native/registry_tree.h"
#include "tests/fuzz/target.h"

namespace {

using namespace vex::platform::native;

std::string written(const RegistryTree& tree) {
    RegistryWriter writer;
    tree.tell(writer);
    return std::string(kRegistryHeader) + writer.text();
}

void require(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    if (is_utf16_registry(text)) text = registry_from_utf16(text);
    RegistryTree tree;
    try {
        RegistryReader(tree).read(text);
    } catch (const RegistryDamage& damage) {
        const auto breaks = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
        require(damage.line() >= 1 && damage.line() <= breaks + 2);
        return 0;
    }
    const std::string once = written(tree);
    RegistryTree again;
    RegistryReader(again).read(once);
    require(written(again) == once);

    // The same in the order in which it was told, deletions included.
    RegistryWriter retold;
    RegistryReader(retold).read(text);
    RegistryTree merged;
    RegistryReader(merged).read(std::string(kRegistryHeader) + retold.text());
    require(written(merged) == once);
    return 0;
}
