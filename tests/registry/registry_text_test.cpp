// The text of a registry: reading what Windows exports and what people write, and writing it again.
#include "platform/native/registry_text.h"

#include <gtest/gtest.h>

#include "platform/native/registry_store.h"

namespace vex::platform::native {
namespace {

using namespace std::string_literals;

const std::string kHeader(kRegistryHeader);

/// What a text says once it is read and written again, without the header.
std::string rewritten(const std::string& text) {
    RegistryKeys keys;
    keys.apply(read_registry(text));
    const std::string written = keys.text();
    return written.substr(std::min(written.size(), written.find("\n[")));
}

/// 0: there is none.
std::size_t line_of_damage(const std::string& text) {
    try {
        RegistryKeys().apply(read_registry(text));
        return 0;
    } catch (const RegistryDamage& damage) {
        return damage.line();
    }
}

TEST(RegistryText, AnExportOfTheRealThingIsRead) {
    constexpr char16_t kExport[] =
        u"\xFEFFWindows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvan]\r\n\r\n"
        u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvan\\Brivola3]\r\n@=\"Brivola\"\r\n"
        u"\"AppPath\"=\"C:\\\\Program Files\\\\Brivola\\\\\"\r\n\"Quoted \\\"name\\\"\"=\"Zürich \x20AC\"\r\n"
        u"\"Count\"=dword:0000002a\r\n\"Window\"=hex:2c,00,ff,\\\r\n  ff,16,\\\r\n  1d,00\r\n"
        u"\"Home\"=hex(2):25,00,48,00,25,00,00,00\r\n\"Nothing\"=hex(0):\r\n\"Two lines\"=\"1\r\n2\"\r\n\r\n";
    const std::vector<std::uint8_t> bytes = data_of(std::u16string_view(kExport, std::size(kExport) - 1));
    EXPECT_EQ(rewritten({bytes.begin(), bytes.end()}),
              "\n[HKEY_LOCAL_MACHINE\\Software\\Norvan\\Brivola3]\n@=\"Brivola\"\n"
              "\"AppPath\"=\"C:\\\\Program Files\\\\Brivola\\\\\"\n\"Count\"=dword:0000002a\n"
              "\"Home\"=hex(2):25,00,48,00,25,00,00,00\n\"Nothing\"=hex(0):\n\"Quoted \\\"name\\\"\"=\"Zürich €\"\n"
              "\"Two lines\"=\"1\r\n2\"\n\"Window\"=hex:2c,00,ff,ff,16,1d,00\n");
}

TEST(RegistryText, PeopleMayWriteItLoosely) {
    // What a text with an H for the header says in the usual form.
    const std::pair<std::string, std::string> cases[] = {
        {"\xEF\xBB\xBFH; a comment\n  [HKEY_CURRENT_USER\\A]  \r\n\t\"spaced\" = \"text\" ; and why\n"
         "\"short\"=dword:F\n\"bytes\"=hex:1, 0A ,b,\\\n\t0c\n\"Same\"=\"old\"\n\"SAME\"=\"new\"\n"
         "\"gone\"=\"x\"\n\"gone\"=-\n\"never there\"=-",
         "\n[HKEY_CURRENT_USER\\A]\n\"bytes\"=hex:01,0a,0b,0c\n\"Same\"=\"new\"\n\"short\"=dword:0000000f\n"
         "\"spaced\"=\"text\"\n"},
        {"H[HKEY_USERS\\B\\C]\n[HKEY_USERS\\B\\D]\n[-HKEY_USERS\\b\\c]\n[-HKEY_USERS\\Never There]\n"
         "[HKEY_CLASSES_ROOT\\X]\n@=\"\"",
         "\n[HKEY_LOCAL_MACHINE\\Software\\Classes\\X]\n@=\"\"\n\n[HKEY_USERS\\B\\D]\n"},
        // Roots and the classes become empty and stay.
        {"H[HKEY_CLASSES_ROOT\\X]\n[HKEY_USERS\\A\\B]\n@=\"\"\n[-HKEY_LOCAL_MACHINE\\Software]\n[-HKEY_USERS]\n"
         "[-HKEY_LOCAL_MACHINE]\n[-HKEY_CLASSES_ROOT]\n[HKEY_CLASSES_ROOT]\n\"after\"=\"wards\"\n",
         "\n[HKEY_LOCAL_MACHINE\\Software\\Classes]\n\"after\"=\"wards\"\n"},
    };
    for (auto [text, usual] : cases) EXPECT_EQ(rewritten(text.replace(text.find('H'), 1, kHeader)), usual);
}

TEST(RegistryText, DamageIsToldWithItsLine) {
    // H stands for the header, K for the header and a key.
    const std::pair<std::size_t, std::vector<std::string>> cases[] = {
        {1, {"", "REGEDIT4\n", "\n", "Windows Registry Editor Version 5.00 and more\n"}},
        {2, {"H[HKEY_USERS\\A\n", "H[HKEY_USERS\\A] x\n", "H[HKEY_USERS\\A\x01]\n", "H[HKEY_NOBODY\\A]\n", "H[]\n",
             "H[-]\n", "H[HKEY_USERS\\" + std::string(256, 'k') + "]\n"}},
        {3, {"H\n\"v\"=\"before any key\"\n", "K\"v\"=\"no end\n\n\n", "K\"no end=\"x\"\n\n", "K\"v\"=\"C:\\Single\"\n",
             "K\"v\" \"x\"\n", "K\"v\"=\n", "K\"v\"=\"x\" y\n", "Kv=\"x\"\n", "K\rv\n", "K\"v\"=\"a\0b\"\n"s,
             "K\"v\"=dword:\n", "K\"v\"=dword:123456789\n", "K\"v\"=\"\xFC\"\n", "K\"\xC3\"=\"x\"\n", "K\"v\"=hex\n",
             "K\"v\"=hex(:01\n", "K\"v\"=hex(2:01\n", "K\"v\"=hex:0g\n", "K\"v\"=hex:001\n", "K\"v\"=hex:01,\\ 02\n",
             "K\"v\"=hex:,01\n", "K\"v\"=hex:01,\n", "K\"v\"=hex:-1\n"}},
        {4, {"K[-HKEY_CURRENT_USER\\A]\n\"v\"=\"after it went\"\n", "K\"v\"=hex:01,\\\n"}},
        {5, {"K\"v\"=\"two\nlines\"\n\"w\"=oops\n"}},
    };
    for (const auto& [line, texts] : cases) {
        for (std::string text : texts) {
            if (text.starts_with('H')) text.replace(0, 1, kHeader);
            if (text.starts_with('K')) text.replace(0, 1, kHeader + "[HKEY_CURRENT_USER\\A]\n");
            EXPECT_EQ(line_of_damage(text), line) << text;
        }
    }
}

}  // namespace
}  // namespace vex::platform::native
