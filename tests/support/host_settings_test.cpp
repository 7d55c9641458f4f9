// The host's settings.
#include <gtest/gtest.h>

#include "support/mod_reg_access.h"
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

TEST_F(HostSettings, NumbersReadAsDecimalTextAndWhatIsMissingOrNoTextAsTheDefault) {
    EXPECT_EQ(read(u"AppPath"), u"the default");
    EXPECT_FALSE(Key::opened(platform::registry_key(kHkeyLocalMachine), "Software\\Norvan"))
        << "reading creates nothing";
    WriteHostSetting(services, std::u16string(256, u'x'), u"Settings", u"v", u"what cannot be written is dropped");
    const Key section = machine_key("Software\\Norvan\\Brivola3\\Settings");
    EXPECT_EQ(read(u"AppPath"), u"the default");
    section.set("EnableXPort", kRegDword, {0xFE, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(read(u"EnableXPort"), u"-2");
    section.set("EnableXPort", kRegBinary, {1, 2});
    EXPECT_EQ(read(u"EnableXPort"), u"the default") << "bytes are no text";
}

TEST_F(HostSettings, WritingCreatesTheKeysAsTheyAreNamedAndATextValue) {
    WriteHostSetting(services, u"Brivola3", u" Deeper\\Section ", u"Key\\Name", u"12");
    const Key section =
        Key::opened(platform::registry_key(kHkeyLocalMachine), "Software\\Norvan\\Brivola3\\ Deeper\\Section ");
    ASSERT_TRUE(section);
    EXPECT_EQ(section.get("Key\\Name"), std::pair(std::uint32_t{kRegSz}, bytes_of({"12\0", 3})))
        << "what looks like a number is written as text";
}

}  // namespace
}  // namespace vex::test
