// The type library file, read back byte by byte by a reader that shares nothing with the writer.
#include <gtest/gtest.h>

#include <map>
#include <set>
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

TEST_F(TypeLibraryFile, HasTheSignatureAndTheLocaleOfNames) {
    EXPECT_EQ(file_.letters(0, 4), "MSFT");
    EXPECT_EQ(file_.number(0x0C), 0x0409U);
}

TEST_F(TypeLibraryFile, HasTheSizeOfTheStandardLayout) {
    EXPECT_EQ(file_.size(), 3084U);
    // The parts follow each other without gaps, and the blocks of members fill the rest.
    std::map<std::uint32_t, std::uint32_t> parts;
    for (std::uint32_t i = 0; i < File::kPartCount; ++i) {
        const auto part = static_cast<File::Part>(i);
        if (file_.part_size(part) != 0) parts[file_.part_at(part)] = file_.part_size(part);
    }
    std::uint32_t at = 0x54 + 4 * file_.type_count() + 16 * File::kPartCount;
    for (const auto& [begin, size] : parts) {
        EXPECT_EQ(begin, at);
        at += size;
    }
    for (std::uint32_t i = 0; i < file_.type_count(); ++i) {
        const std::uint32_t block = file_.number(file_.type_at(i) + 4);
        const std::uint32_t count = file_.number(file_.type_at(i) + 0x18) & 0xFFFF;
        if (count == 0) {
            EXPECT_EQ(block, file_.size());
            continue;
        }
        EXPECT_EQ(block, at);
        at += 4 + file_.number(block) + 12 * count;
    }
    EXPECT_EQ(at, file_.size());
}

TEST_F(TypeLibraryFile, ImportsTheStandardLibrary) {
    const std::uint32_t at = file_.part_at(File::kImportedFiles);
    EXPECT_EQ(file_.guid_text_at(file_.number(at)), "{00020430-0000-0000-C000-000000000046}");
    EXPECT_EQ(file_.number(at + 8), 2U) << "version 2.0";
    EXPECT_EQ(file_.letters(at + 14, file_.number(at + 12, 2) >> 2), "stdole2.tlb");
    std::set<std::string> types;
    for (std::uint32_t offset = 0; offset < file_.part_size(File::kImportedTypes); offset += 12) {
        types.insert(file_.guid_text_at(file_.number(file_.part_at(File::kImportedTypes) + offset + 8)));
    }
    EXPECT_EQ(types,
              (std::set<std::string>{"{00020400-0000-0000-C000-000000000046}", "{0BE35204-8F91-11CE-9DE3-00AA004BB851}",
                                     "{7BF80981-BF32-101A-8BBB-00AA00300CAB}"}));
    EXPECT_EQ(file_.number(0x50), 3U);
    EXPECT_EQ(file_.number(0x4C), 1U) << "IDispatch is the first import";
}

TEST_F(TypeLibraryFile, HashChainsReachEveryEntryOnce) {
    std::set<std::uint32_t> guids;
    for (std::uint32_t slot = 0; slot < 32; ++slot) {
        for (auto at = file_.number(file_.part_at(File::kGuidHash) + 4 * slot); at != kNone;
             at = file_.number(file_.part_at(File::kGuids) + at + 20)) {
            EXPECT_TRUE(guids.insert(at).second);
        }
    }
    EXPECT_EQ(24 * guids.size(), file_.part_size(File::kGuids));

    std::size_t characters = 0;
    std::set<std::string> names;
    for (std::uint32_t slot = 0; slot < 128; ++slot) {
        for (auto at = file_.number(file_.part_at(File::kNameHash) + 4 * slot); at != kNone;
             at = file_.number(file_.part_at(File::kNames) + at + 4)) {
            EXPECT_EQ(file_.number(file_.part_at(File::kNames) + at + 10, 2) % 128, slot);
            EXPECT_TRUE(names.insert(file_.name(at)).second);
            characters += file_.name(at).size();
        }
    }
    EXPECT_EQ(names.size(), file_.number(0x30));
    EXPECT_EQ(characters, file_.number(0x34));
}

TEST(InterfaceIdResource, IsALengthAndTheIdentity) {
    const std::vector<std::uint8_t> bytes = type_library::write_interface_id(plugin::kPluginDataInterface);
    const std::vector<std::uint8_t> expected = {16,   0,    0,    0,    0xCC, 0x5C, 0xD1, 0x28, 0x8D, 0xA5,
                                                0xF0, 0x44, 0x8A, 0xAF, 0x3E, 0xEC, 0xB0, 0x73, 0x6F, 0xA9};
    EXPECT_EQ(bytes, expected);
}

}  // namespace
}  // namespace vex::plugin_test
