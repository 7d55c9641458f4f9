// The type library file, read back byte by byte by a reader that shares nothing with the writer.
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "plugin/type_library/writer.h"
#include "tests/plugin/type_library_words.h"

namespace vex::plugin_test {
namespace {

constexpr std::uint32_t kNone = 0xFFFFFFFF;

/// The parts of a file, found by its directory.
class File {
public:
    enum Part {
        kTypes,
        kImportedTypes,
        kImportedFiles,
        kReferences,
        kGuidHash,
        kGuids,
        kNameHash,
        kNames,
        kStrings,
        kTypeDescriptions,
        kPartCount = 15
    };

    explicit File(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}

    std::uint32_t size() const { return static_cast<std::uint32_t>(bytes_.size()); }
    std::uint32_t number(std::uint32_t at, std::uint32_t width = 4) const {
        std::uint32_t value = 0;
        for (std::uint32_t i = 0; i < width; ++i) value |= std::uint32_t{bytes_.at(at + i)} << (8 * i);
        return value;
    }
    std::string letters(std::uint32_t at, std::uint32_t length) const {
        std::string text;
        for (std::uint32_t i = 0; i < length; ++i) text += static_cast<char>(bytes_.at(at + i));
        return text;
    }
    GUID guid(std::uint32_t at) const {
        GUID guid{number(at),
                  static_cast<std::uint16_t>(number(at + 4, 2)),
                  static_cast<std::uint16_t>(number(at + 6, 2)),
                  {}};
        for (std::uint32_t i = 0; i < 8; ++i) guid.Data4[i] = bytes_.at(at + 8 + i);
        return guid;
    }

    std::uint32_t type_count() const { return number(0x20); }
    std::uint32_t part_at(Part part) const { return number(directory(part)); }
    std::uint32_t part_size(Part part) const { return number(directory(part) + 4); }
    std::uint32_t type_at(std::uint32_t index) const { return part_at(kTypes) + number(0x54 + 4 * index); }
    std::string name(std::uint32_t offset) const {
        const std::uint32_t at = part_at(kNames) + offset;
        return letters(at + 12, number(at + 8, 1));
    }
    std::string guid_text_at(std::uint32_t offset) const { return guid_text(guid(part_at(kGuids) + offset)); }

private:
    std::uint32_t directory(std::uint32_t part) const { return 0x54 + 4 * type_count() + 16 * part; }

    std::vector<std::uint8_t> bytes_;
};

/// Puts a file into words.
class Description {
public:
    explicit Description(const File& file) : file_(file) {}

    std::string text() {
        const File& file = file_;
        const bool has_help = file.number(0x24) != kNone || file.number(0x28) != 0 || file.number(0x2C) != 0 ||
                              file.number(0x3C) != kNone || file.number(0x40) != kNone;
        text_ = "library " + file.name(file.number(0x38)) + " " + file.guid_text_at(file.number(8)) + " " +
                version(file.number(0x18)) + ", locale " + std::to_string(file.number(0x10)) + ", system " +
                std::to_string(file.number(0x14) & 0xF) + (has_help ? ", help" : ", no help") + "\n";
        for (std::uint32_t i = 0; i < file.type_count(); ++i) describe_type(file.type_at(i));
        return text_;
    }

private:
    static std::string version(std::uint32_t number) {
        return std::to_string(number & 0xFFFF) + "." + std::to_string(number >> 16);
    }

    std::string imported(std::uint32_t reference) const {
        if ((reference & 3) != 1) return "no import";
        const std::uint32_t at = file_.part_at(File::kImportedTypes) + (reference & ~3U);
        return file_.guid_text_at(file_.number(at + 8));
    }

    std::string type_text(std::uint32_t code) const {
        if ((code & 0x80000000) != 0) return simple_type_text(static_cast<VARTYPE>(code & 0xFFFF));
        const std::uint32_t at = file_.part_at(File::kTypeDescriptions) + code;
        const std::uint32_t kind = file_.number(at, 2);
        const std::uint32_t target = file_.number(at + 4);
        if (kind == VT_PTR) return type_text(target) + "*";
        return kind == VT_USERDEFINED ? imported(target) : "kind " + std::to_string(kind);
    }

    void describe_type(std::uint32_t at) {
        const std::uint32_t kind = file_.number(at) & 0xF;
        const std::string head = file_.name(file_.number(at + 0x34)) + " " +
                                 file_.guid_text_at(file_.number(at + 0x2C)) + " " + version(file_.number(at + 0x38)) +
                                 ", flags " + hex_text(file_.number(at + 0x30));
        if (kind == kClassKind) {
            text_ += "class " + head + "\n";
            const std::uint32_t reference = file_.part_at(File::kReferences) + file_.number(at + 0x54);
            const std::uint32_t target = file_.part_at(File::kTypes) + file_.number(reference);
            text_ += std::string("  ") + (file_.number(reference + 4) == 1 ? "default " : "other ") +
                     file_.guid_text_at(file_.number(target + 0x2C)) + "\n";
            return;
        }
        text_ += "interface " + head + ", from " + imported(file_.number(at + 0x54)) + "\n";
        const std::uint32_t count = file_.number(at + 0x18) & 0xFFFF;
        EXPECT_EQ(file_.number(at + 0x4E, 2), 4 * (7 + count)) << "size of the virtual table";
        describe_members(file_.number(at + 4), count);
    }

    void describe_members(std::uint32_t block, std::uint32_t count) {
        const std::uint32_t descriptions = block + 4;
        const std::uint32_t ids = descriptions + file_.number(block);
        const std::uint32_t names = ids + 4 * count;
        const std::uint32_t places = names + 4 * count;
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t at = descriptions + file_.number(places + 4 * i);
            const std::uint32_t invoke = file_.number(at + 0x10) >> 3 & 0xF;
            EXPECT_EQ(type_text(file_.number(at + 4)), "result");
            EXPECT_EQ(file_.number(at, 2), 0x18 + 12 * file_.number(at + 0x14, 2)) << "length of the description";
            text_ += "  " + hex_text(file_.number(ids + 4 * i)) + (invoke == 2 ? " get " : " method ") +
                     file_.name(file_.number(names + 4 * i)) + ", slot " +
                     std::to_string(file_.number(at + 0xC, 2) / 4) + ":";
            for (std::uint32_t k = 0; k < file_.number(at + 0x14, 2); ++k) {
                const std::uint32_t parameter = at + 0x18 + 12 * k;
                const std::uint32_t name = file_.number(parameter + 4);
                text_ += (k == 0 ? " " : ", ") + parameter_flags_text(file_.number(parameter + 8)) +
                         type_text(file_.number(parameter)) + (name == kNone ? "" : " " + file_.name(name));
            }
            text_ += "\n";
        }
    }

    static constexpr std::uint32_t kClassKind = 5;

    const File& file_;
    std::string text_;
};

class TypeLibraryFile : public testing::Test {
protected:
    const File file_{type_library::write(plugin::kLibrary)};
};

TEST_F(TypeLibraryFile, SaysWhatTheContractSays) { EXPECT_EQ(Description(file_).text(), kExpectedTypeLibrary); }

TEST_F(TypeLibraryFile, IsTheOneThatSystemsWereSeenToRead) {
    EXPECT_EQ(file_.size(), 3084U);
    std::uint32_t sum = 0;
    for (std::uint32_t at = 0; at < file_.size(); ++at) sum = sum * 31 + file_.number(at, 1);
    EXPECT_EQ(sum, 3615085644U);
}

}  // namespace
}  // namespace vex::plugin_test
