// The type library file, read back byte by byte by a reader that shares nothing with the writer.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "plugin/type_library/writer.h"
#include "tests/plugin/type_library_words.h"

namespace vex::plugin_test {
namespace {

constexpr std::uint32_t kNone = 0xFFFFFFFF;

/// Puts a file into words. Its parts are found by its directory.
class File {
public:
    explicit File(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}

    std::string text() {
        const bool has_help = number(0x24) != kNone || number(0x28) != 0 || number(0x2C) != 0 ||
                              number(0x3C) != kNone || number(0x40) != kNone;
        text_ = "library " + name(number(0x38)) + " " + identity(number(8)) + " " + version(number(0x18)) +
                ", locale " + std::to_string(number(0x10)) + ", system " + std::to_string(number(0x14) & 0xF) +
                (has_help ? ", help" : ", no help") + "\n";
        for (std::uint32_t i = 0; i < number(0x20); ++i) describe_type(part(kTypes) + number(0x54 + 4 * i));
        return text_;
    }

private:
    enum Part { kTypes, kImportedTypes, kReferences = 3, kGuids = 5, kNames = 7, kTypeDescriptions = 9 };

    std::uint32_t number(std::uint32_t at, std::uint32_t width = 4) const {
        std::uint32_t value = 0;
        for (std::uint32_t i = 0; i < width; ++i) value |= std::uint32_t{bytes_.at(at + i)} << (8 * i);
        return value;
    }
    std::uint32_t part(std::uint32_t which) const { return number(0x54 + 4 * number(0x20) + 16 * which); }
    std::string name(std::uint32_t offset) const {
        const auto at = bytes_.begin() + part(kNames) + offset;
        return {at + 12, at + 12 + at[8]};
    }
    std::string identity(std::uint32_t offset) const {
        GUID guid;
        std::memcpy(&guid, bytes_.data() + part(kGuids) + offset, sizeof guid);
        return guid_text(guid);
    }
    static std::string version(std::uint32_t number) {
        return std::to_string(number & 0xFFFF) + "." + std::to_string(number >> 16);
    }

    std::string imported(std::uint32_t reference) const {
        if ((reference & 3) != 1) return "no import";
        const std::uint32_t at = part(kImportedTypes) + (reference & ~3U);
        return identity(number(at + 8));
    }

    std::string type_text(std::uint32_t code) const {
        if ((code & 0x80000000) != 0) return simple_type_text(static_cast<VARTYPE>(code & 0xFFFF));
        const std::uint32_t at = part(kTypeDescriptions) + code;
        const std::uint32_t kind = number(at, 2);
        const std::uint32_t target = number(at + 4);
        if (kind == VT_PTR) return type_text(target) + "*";
        return kind == VT_USERDEFINED ? imported(target) : "kind " + std::to_string(kind);
    }

    void describe_type(std::uint32_t at) {
        const std::uint32_t kind = number(at) & 0xF;
        const std::string head = name(number(at + 0x34)) + " " + identity(number(at + 0x2C)) + " " +
                                 version(number(at + 0x38)) + ", flags " + hex_text(number(at + 0x30));
        if (kind == kClassKind) {
            text_ += "class " + head + "\n";
            const std::uint32_t reference = part(kReferences) + number(at + 0x54);
            const std::uint32_t target = part(kTypes) + number(reference);
            text_ += std::string("  ") + (number(reference + 4) == 1 ? "default " : "other ") +
                     identity(number(target + 0x2C)) + "\n";
            return;
        }
        text_ += "interface " + head + ", from " + imported(number(at + 0x54)) + "\n";
        const std::uint32_t count = number(at + 0x18) & 0xFFFF;
        EXPECT_EQ(number(at + 0x4E, 2), 4 * (7 + count)) << "size of the virtual table";
        describe_members(number(at + 4), count);
    }

    void describe_members(std::uint32_t block, std::uint32_t count) {
        const std::uint32_t descriptions = block + 4;
        const std::uint32_t ids = descriptions + number(block);
        const std::uint32_t names = ids + 4 * count;
        const std::uint32_t places = names + 4 * count;
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t at = descriptions + number(places + 4 * i);
            const std::uint32_t invoke = number(at + 0x10) >> 3 & 0xF;
            EXPECT_EQ(type_text(number(at + 4)), "result");
            EXPECT_EQ(number(at, 2), 0x18 + 12 * number(at + 0x14, 2)) << "length of the description";
            text_ += "  " + hex_text(number(ids + 4 * i)) + (invoke == 2 ? " get " : " method ") +
                     name(number(names + 4 * i)) + ", slot " + std::to_string(number(at + 0xC, 2) / 4) + ":";
            for (std::uint32_t k = 0; k < number(at + 0x14, 2); ++k) {
                const std::uint32_t parameter = at + 0x18 + 12 * k;
                const std::uint32_t known_as = number(parameter + 4);
                text_ += (k == 0 ? " " : ", ") + parameter_flags_text(number(parameter + 8)) +
                         type_text(number(parameter)) + (known_as == kNone ? "" : " " + name(known_as));
            }
            text_ += "\n";
        }
    }

    static constexpr std::uint32_t kClassKind = 5;

    std::vector<std::uint8_t> bytes_;
    std::string text_;
};

TEST(TypeLibraryFile, SaysWhatTheContractSays) {
    EXPECT_EQ(File(type_library::write(plugin::kLibrary)).text(), kExpectedTypeLibrary);
}

TEST(TypeLibraryFile, IsTheOneThatSystemsWereSeenToRead) {
    const std::vector<std::uint8_t> bytes = type_library::write(plugin::kLibrary);
    EXPECT_EQ(bytes.size(), 3084U);
    std::uint32_t sum = 0;
    for (const std::uint8_t byte : bytes) sum = sum * 31 + byte;
    EXPECT_EQ(sum, 3615085644U);
}

}  // namespace
}  // namespace vex::plugin_test
