// The text of a registry: reading what Windows exports and what people write, and writing it again.
#include "platform/native/registry_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "core/unicode.h"
#include "platform/native/registry_tree.h"
#include "platform/registry.h"

namespace vex::platform::native {
namespace {

using namespace std::string_literals;

const std::string kHeader(kRegistryHeader);

/// What a text says once it is read and written again, without the header.
std::string rewritten(const std::string& text) {
    RegistryTree tree;
    RegistryReader(tree).read(text);
    RegistryWriter writer;
    tree.tell(writer);
    return writer.text();
}

/// A text as Windows saves it.
std::string utf16(const std::u16string& text) {
    std::string bytes = "\xFF\xFE";
    for (const char16_t c : text) {
        bytes += static_cast<char>(c & 0xFF);
        bytes += static_cast<char>(c >> 8);
    }
    return bytes;
}

constexpr char16_t kExport[] =
    u"Windows Registry Editor Version 5.00\r\n"
    u"\r\n"
    u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvan]\r\n"
    u"\r\n"
    u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvan\\Brivola3]\r\n"
    u"@=\"Brivola\"\r\n"
    u"\r\n"
    u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvan\\Brivola3\\Settings]\r\n"
    u"\"AppPath\"=\"C:\\\\Program Files\\\\Brivola\\\\\"\r\n"
    u"\"Quoted \\\"name\\\"\"=\"Zürich \x20AC\"\r\n"
    u"\"Count\"=dword:0000002a\r\n"
    u"\"Window\"=hex:2c,00,00,00,00,00,00,00,01,00,00,00,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,\\\r\n"
    u"  ff,ff,ff,ff,ff,16,00,00,00,1d,00,00,00\r\n"
    u"\"Home\"=hex(2):25,00,48,00,25,00,00,00\r\n"
    u"\"List\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n"
    u"\"Nothing\"=hex(0):\r\n"
    u"\"Two lines\"=\"first\r\nsecond\"\r\n"
    u"\r\n";

TEST(RegistryText, AnExportOfTheRealThingIsRead) {
    const std::string bytes = utf16(kExport);
    ASSERT_TRUE(is_utf16_registry(bytes));
    EXPECT_EQ(
        rewritten(registry_from_utf16(bytes)),
        "\n[HKEY_LOCAL_MACHINE\\Software\\Norvan\\Brivola3]\n"
        "@=\"Brivola\"\n"
        "\n[HKEY_LOCAL_MACHINE\\Software\\Norvan\\Brivola3\\Settings]\n"
        "\"AppPath\"=\"C:\\\\Program Files\\\\Brivola\\\\\"\n"
        "\"Quoted \\\"name\\\"\"=\"Zürich €\"\n"
        "\"Count\"=dword:0000002a\n"
        "\"Window\"=hex:2c,00,00,00,00,00,00,00,01,00,00,00,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,ff,16,00,"
        "00,00,1d,00,00,00\n"
        "\"Home\"=hex(2):25,00,48,00,25,00,00,00\n"
        "\"List\"=hex(7):61,00,00,00,62,00,00,00,00,00\n"
        "\"Nothing\"=hex(0):\n"
        "\"Two lines\"=hex(1):66,00,69,00,72,00,73,00,74,00,0d,00,0a,00,73,00,65,00,63,00,6f,00,6e,00,64,00,00,00\n");
}

TEST(RegistryText, PeopleMayWriteItLoosely) {
    EXPECT_EQ(rewritten("\xEF\xBB\xBF" + kHeader +
                        "; a comment\n"
                        "  [HKEY_CURRENT_USER\\A]  \r\n"
                        "\t\"spaced\" = \"text\" ; and why\n"
                        "\"short\"=dword:F\n"
                        "\"bytes\"=hex:1, 0A ,b,\\\n"
                        "\t0c\n"
                        "\"Same\"=\"old\"\n"
                        "\"SAME\"=\"new\"\n"
                        "\"gone\"=\"x\"\n"
                        "\"gone\"=-\n"
                        "\"never there\"=-\n"
                        "[HKEY_CURRENT_USER\\B\\C]\n"
                        "[HKEY_CURRENT_USER\\B\\D]\n"
                        "[-HKEY_CURRENT_USER\\b\\c]\n"
                        "[-HKEY_CURRENT_USER\\Never There]\n"
                        "[HKEY_CLASSES_ROOT\\Some.Class]\n"
                        "@=\"\""),
              "\n[HKEY_LOCAL_MACHINE\\Software\\Classes\\Some.Class]\n"
              "@=\"\"\n"
              "\n[HKEY_CURRENT_USER\\A]\n"
              "\"spaced\"=\"text\"\n"
              "\"short\"=dword:0000000f\n"
              "\"bytes\"=hex:01,0a,0b,0c\n"
              "\"Same\"=\"new\"\n"
              "\n[HKEY_CURRENT_USER\\B\\D]\n");
}

TEST(RegistryText, DeletingARootOrTheClassesLeavesThemEmpty) {
    EXPECT_EQ(
        rewritten(kHeader +
                  "[HKEY_LOCAL_MACHINE\\Software\\Classes\\X]\n[HKEY_CURRENT_USER\\A\\B]\n@=\"\"\n"
                  "[-HKEY_LOCAL_MACHINE\\Software]\n[-HKEY_CURRENT_USER]\n[-HKEY_LOCAL_MACHINE]\n[-HKEY_CLASSES_ROOT]\n"
                  "[HKEY_CLASSES_ROOT]\n\"after\"=\"wards\"\n"),
        "\n[HKEY_LOCAL_MACHINE\\Software\\Classes]\n\"after\"=\"wards\"\n");
}

TEST(RegistryText, DamageIsToldWithItsLine) {
    // H stands for the header, K for the header and a key.
    const std::pair<std::size_t, std::vector<std::string>> cases[] = {
        {1, {"REGEDIT4\n", "\n", "Windows Registry Editor Version 5.00 and more\n"}},
        {2,
         {"H[HKEY_CURRENT_USER\\A\n", "H[HKEY_CURRENT_USER\\A] x\n", "H[HKEY_NOBODY\\A]\n", "H[]\n", "H[-]\n",
          "H[HKEY_CURRENT_USER\\A\x01]\n"}},
        {3,
         {"H\n\"v\"=\"before any key\"\n",
          "K\"v\"=\"no end\n\n\n",
          "K\"no end=\"x\"\n\n",
          "K\"v\"=\"C:\\Single\"\n",
          "K\"v\" \"x\"\n",
          "K\"v\"=\n",
          "K\"v\"=\"x\" y\n",
          "K\"v\"=dword:\n",
          "K\"v\"=dword:123456789\n",
          "K\"v\"=hex\n",
          "K\"v\"=hex(:01\n",
          "K\"v\"=hex(2:01\n",
          "K\"v\"=hex:0g\n",
          "K\"v\"=hex:001\n",
          "K\"v\"=hex:01,\\ 02\n",
          "K\rv\n",
          "K\"v\"=hex:,01\n",
          "K\"v\"=hex:01,\n",
          "Kv=\"x\"\n",
          "K\"v\"=\"\xFC\"\n",
          "K\"\xC3\"=\"x\"\n"}},
        {4, {"H[HKEY_CURRENT_USER\\A]\n[-HKEY_CURRENT_USER\\A]\n\"v\"=\"after it went\"\n", "K\"v\"=hex:01,\\\n"}},
        {5, {"K\"v\"=\"two\nlines\"\n\"w\"=oops\n"}},
    };
    for (const auto& [line, texts] : cases) {
        for (std::string text : texts) {
            if (text.starts_with('H')) text.replace(0, 1, kHeader);
            if (text.starts_with('K')) text.replace(0, 1, kHeader + "[HKEY_CURRENT_USER\\A]\n");
            RegistryTree tree;
            try {
                RegistryReader(tree).read(text);
                ADD_FAILURE() << "accepted: " << text;
            } catch (const RegistryDamage& damage) {
                EXPECT_EQ(damage.line(), line) << damage.what() << ": " << text;
            }
        }
    }
    RegistryTree tree;
    EXPECT_THROW(RegistryReader(tree).read(kHeader + "[HKEY_CURRENT_USER\\A]\n\"v\"=\"a\0b\"\n"s), RegistryDamage);
}

TEST(RegistryText, KeysHaveALimitedDepth) {
    std::string path = "HKEY_CURRENT_USER";
    for (std::size_t depth = 0; depth < kMaxKeyDepth; ++depth) path += "\\k";
    EXPECT_EQ(rewritten(kHeader + '[' + path + "]\n"), "\n[" + path + "]\n");
    EXPECT_THROW(rewritten(kHeader + '[' + path + "\\k]\n"), RegistryDamage);

    // The classes lie deeper than their name tells. What was read by it must be readable by the longer one.
    const std::string classes = "HKEY_CLASSES_ROOT" + path.substr(std::strlen("HKEY_CURRENT_USER\\k\\k"));
    const std::string deepest = rewritten(kHeader + '[' + classes + "]\n");
    EXPECT_EQ(rewritten(kHeader + deepest), deepest);
    EXPECT_THROW(rewritten(kHeader + '[' + classes + "\\k]\n"), RegistryDamage);
}

TEST(RegistryText, WhatIsWrittenReadsTheSame) {
    const std::u16string texts[] = {u"",
                                    u"plain",
                                    u"\"\\",
                                    u"tab\there",
                                    u"line\nbreak",
                                    u"\xFEFF\xFFFD\x7F\x80",
                                    u"\xD83D\xDE00",
                                    u"\xD83D",
                                    u"\xDE00\xD83D",
                                    std::u16string(u"in\0side", 7)};
    RegistryWriter writer;
    writer.key(u"HKEY_USERS\\];[-\"=@\\ blanks ");
    std::vector<RegistryValue> values;
    for (const std::u16string& name : {u""s, u"@"s, u"-"s, u"a\"b\\c"s, u"new\nline\r"s, u";x"s}) {
        for (const std::u16string& text : texts) {
            RegistryValue value{name + std::u16string(values.size(), u'x'), kRegSz, {}};
            for (const char16_t c : text + u'\0') {
                value.data.push_back(static_cast<std::uint8_t>(c));
                value.data.push_back(static_cast<std::uint8_t>(c >> 8));
            }
            values.push_back(value);
            value.name += u" cut";
            value.data.pop_back();
            values.push_back(value);
        }
    }
    values.push_back({u"default's twin", 0xFFFFFFFF, {0, 255}});
    values.push_back({u"short dword", kRegDword, {1, 2, 3}});
    for (const RegistryValue& value : values) writer.value(value);

    RegistryTree tree;
    RegistryReader(tree).read(kHeader + writer.text());
    const RegistryNode* node = tree.find(u"HKEY_USERS\\];[-\"=@\\ blanks ");
    ASSERT_NE(node, nullptr);
    ASSERT_EQ(node->values.size(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(node->values[i]->name, values[i].name);
        EXPECT_EQ(node->values[i]->type, values[i].type) << to_utf8(values[i].name);
        EXPECT_EQ(node->values[i]->data, values[i].data) << to_utf8(values[i].name);
    }
    // One line each, so that a line that was cut short is one change.
    EXPECT_EQ(static_cast<std::size_t>(std::count(writer.text().begin(), writer.text().end(), '\n')),
              values.size() + 2);
}

}  // namespace
}  // namespace vex::platform::native
