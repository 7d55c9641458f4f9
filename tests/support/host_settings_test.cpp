// The host's settings.
#include <gtest/gtest.h>

#include "core/runtime_error.h"
#include "support/mod_reg_access.h"
#include "support/registry_routines.h"
#include "tests/shared/notebook.h"

namespace vex::test {
namespace {

using namespace platform;

class HostSettings : public RecordedFixture {
protected:
    std::u16string read(const std::u16string& name) const {
        return ReadHostSetting(services, u"Brivola3", u"Settings", name, u"the default");
    }
};

TEST_F(HostSettings, WhatIsMissingReadsAsTheDefault) {
    EXPECT_EQ(read(u"AppPath"), u"the default");
    EXPECT_FALSE(Key::opened(platform::registry_key(kHkeyLocalMachine), "Software\\Norvan"))
        << "reading creates nothing";
    registry.read_only = true;
    WriteHostSetting(services, u"Brivola3", u"Settings", u"AppPath", u"what cannot be written is dropped silently");
    EXPECT_EQ(read(u"AppPath"), u"the default");
    machine_key("Software\\Norvan\\Brivola3\\Settings");
    EXPECT_EQ(read(u"AppPath"), u"the default");
}

TEST_F(HostSettings, WritingCreatesTheKeysAsTheyAreNamedAndATextValue) {
    WriteHostSetting(services, u"Brivola3", u" Deeper\\Section ", u"Key\\Name", u"C:\\Firmware");
    const Key section =
        Key::opened(platform::registry_key(kHkeyLocalMachine), "Software\\Norvan\\Brivola3\\ Deeper\\Section ");
    ASSERT_TRUE(section);
    EXPECT_EQ(section.get("Key\\Name"), std::pair(std::uint32_t{kRegSz}, bytes_of({"C:\\Firmware\0", 12})));
    WriteHostSetting(services, u"Brivola3", u" Deeper\\Section ", u"Key\\Name", u"12");
    EXPECT_EQ(section.get("Key\\Name"), std::pair(std::uint32_t{kRegSz}, bytes_of({"12\0", 3})))
        << "what looks like a number is written as text";
}

TEST_F(HostSettings, NumbersReadAsDecimalTextAndBytesAsTheDefault) {
    const Key section = machine_key("Software\\Norvan\\Brivola3\\Settings");
    section.set("EnableXPort", kRegDword, {0xFE, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(read(u"EnableXPort"), u"-2");
    section.set("EnableXPort", kRegBinary, {1, 2});
    EXPECT_EQ(read(u"EnableXPort"), u"the default") << "bytes are no text";
}

TEST_F(HostSettings, AnEnumerationEndsAtANameOf260Characters) {
    RegistryRoutines routines(registry);
    const auto values = [&routines](std::size_t length) {
        machine_key("Software\\Values").set(std::string(length, 'n').c_str(), kRegSz, {'x'});
        auto found = routines.EnumRegistryValues(kHkeyLocalMachine, u"Software\\Values");
        delete_tree(platform::registry_key(kHkeyLocalMachine), "Software\\Values");
        return found;
    };
    EXPECT_TRUE(values(260).empty());
    const auto fits = values(259);
    ASSERT_EQ(fits.size(), 1U);
    EXPECT_EQ(fits[0].first, std::u16string(259, u'n'));
    EXPECT_EQ(fits[0].second, AutomationValue(u"")) << "the last byte of a text counts as its null";
}

}  // namespace
}  // namespace vex::test
