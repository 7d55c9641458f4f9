// Fuzz target: any bytes as a registry's file. What is read must come out the same when it is written and
// read again, and what is damaged must be told with a line of the text.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "core/unicode.h"
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

/// All keys and values, a line each. Sorted, because the order of keys is not promised.
class Listing final : public RegistryChanges {
public:
    explicit Listing(const RegistryTree& tree) {
        tree.tell(*this);
        std::sort(lines_.begin(), lines_.end());
    }

    void key(std::u16string_view path) override {
        current_ = path;
        lines_.push_back(vex::to_utf8(path));
    }
    void key_deleted(std::u16string_view) override { std::abort(); }
    void value(RegistryValue value) override {
        RegistryWriter writer;
        writer.value(std::move(value));
        lines_.push_back(vex::to_utf8(current_) + ' ' + writer.text());
    }
    void value_deleted(std::u16string_view) override { std::abort(); }

    friend bool operator==(const Listing& left, const Listing& right) { return left.lines_ == right.lines_; }

private:
    std::u16string current_;
    std::vector<std::string> lines_;
};

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
    const Listing listing(tree);
    RegistryTree again;
    RegistryReader(again).read(written(tree));
    require(Listing(again) == listing);

    // The same in the order in which it was told, deletions included.
    RegistryWriter retold;
    RegistryReader(retold).read(text);
    RegistryTree merged;
    RegistryReader(merged).read(std::string(kRegistryHeader) + retold.text());
    require(Listing(merged) == listing);
    return 0;
}
