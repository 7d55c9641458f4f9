// The About box and the private label.
#include "about/frm_about.h"

#include <gtest/gtest.h>

#include "core/product.h"
#include "platform/system.h"
#include "tests/shared/error_of.h"
#include "tests/shared/notebook.h"

namespace vex::test {
namespace {

class About : public RecordedFixture {
protected:
    std::u16string shown_description() {
        screen.acts = {[](forms::Form& form) { form.raise_click(*form.find("cmdOK")); }};
        about.show_modal();
        return about.find("lblDescription")->caption();
    }

    frmAbout about{services};
};

TEST_F(About, ShowsTheCompanyOrThePrivateLabelAfreshEachTime) {
    EXPECT_EQ(shown_description(), product::kCompanyName);
    EXPECT_TRUE(static_cast<forms::Button*>(about.find("cmdOK"))->is_default);
    EXPECT_EQ(about.caption(), u"About vexFirmWarePlugin");
    EXPECT_EQ(about.find("lblVersion")->caption(), u"Version 4.0");
    EXPECT_TRUE(about.find("lblDisclaimer")->caption().starts_with(u"Warning: "));
    const Key label = machine_key("Software\\BrivolaLite");
    for (const char* company : {"Signs & Co", "Other"}) {
        label.set_text("Private Label Company", company);
        EXPECT_EQ(shown_description(), platform::from_ansi(company)) << "not behind the text of before";
    }
    label.set("Private Label Company", platform::kRegBinary, {1, 2});
    EXPECT_EQ(shown_description(), product::kCompanyName) << "bytes are no text";
}

TEST_F(About, LooksForTheSystemInformationInOnePlaceOnly) {
    machine_key("SOFTWARE\\Microsoft\\Shared Tools\\MSINFO").set_text("PATH", "C:\\Gone.exe");
    machine_key("SOFTWARE\\Microsoft\\Shared Tools Location").set_text("MSINFO", "C:\\Info");
    const auto started = [this] {
        about.raise_click(*about.find("cmdSysInfo"));
        return notebook.take();
    };
    const std::string refusal = "ask \"vexFirmWarePlugin\" \"System Information Is Unavailable At This Time\" ok\n";
    programs_start = false;
    EXPECT_EQ(started(), "start C:\\Gone.exe\n" + refusal) << "the second place is not tried";
    delete_tree(platform::registry_key(platform::kHkeyLocalMachine), "SOFTWARE\\Microsoft\\Shared Tools");
    programs_start = true;
    EXPECT_EQ(started(), "is there C:\\Info\\MSINFO32.EXE\nstart C:\\Info\\MSINFO32.EXE\n");
    files_exist = false;
    EXPECT_EQ(started(), "is there C:\\Info\\MSINFO32.EXE\n" + refusal);
    machine_key("SOFTWARE\\Microsoft\\Shared Tools\\MSINFO").set("PATH", platform::kRegDword, {});
    EXPECT_EQ(started(), refusal) << "a number without digits";
}

TEST_F(About, TextsAndNumbersOfTheRegistryAreReadAndNothingElse) {
    const Key values = machine_key("Software\\Values");
    const auto read = [this](const char16_t* name, std::u16string value) {
        const bool succeeds = about.GetKeyValue(platform::kHkeyLocalMachine, u"Software\\Values", name, value);
        return succeeds ? value : u"failed: " + value;
    };
    const auto value = [&](std::uint32_t type, const Bytes& data, const std::u16string& before = u"") {
        values.set("v", type, data);
        return read(u"v", before);
    };
    EXPECT_TRUE(value(platform::kRegSz, bytes_of("unended")).starts_with(u"unended"));
    EXPECT_EQ(registry.last_access, 0x2003FU);
    EXPECT_EQ(value(platform::kRegDword, {0x34, 0x12, 0, 0}), u"4660");
    EXPECT_EQ(value(platform::kRegDword, {0x04, 0x03, 0x02, 0x01}), u"4660") << "not 01, 02, 03, 04: kept";
    EXPECT_EQ(value(platform::kRegDword, {0xFF, 0xFF, 0xFF, 0xFF}), u"-1") << "32 bits keep their sign";
    EXPECT_EQ(value(platform::kRegDword, {1, 0, 0, 0}, u"2"), u"8193") << "behind the caller's digits: kept";
    EXPECT_EQ(error_of([&] { value(platform::kRegDword, {1, 0, 0, 0}, u"1x"); }), kTypeMismatch);
    EXPECT_EQ(error_of([&] { value(platform::kRegDword, {0xFF, 0xFF, 0xFF, 0xFF}, u"1"); }), kOverflow);
    EXPECT_EQ(value(platform::kRegBinary, {1, 2}, u"old"), u"old");
    EXPECT_EQ(value(platform::kRegSz, Bytes(1025, 'x')), u"failed: ") << "more than the buffer of 1024 bytes holds";
    EXPECT_EQ(read(u"missing", u"old"), u"failed: ");
}

}  // namespace
}  // namespace vex::test
