// The host's settings, on the side's registry. What belongs under HKEY_LOCAL_MACHINE goes below the test key.
#include <gmock/gmock.h>

#include "core/runtime_error.h"
#include "support/mod_reg_access.h"
#include "tests/registry/forwarding_registry.h"
#include "tests/registry/test_key.h"

namespace vex::test {
namespace {

using namespace platform;

/// Puts a key in the place of HKEY_LOCAL_MACHINE, and has no other roots.
class RedirectedRegistry final : public ForwardingRegistry {
public:
    RedirectedRegistry(Registry& target, RegistryKey local_machine)
        : ForwardingRegistry(target), local_machine_(local_machine) {}

    std::int32_t open_key(RegistryKey parent, const char* path, std::uint32_t access,
                          RegistryKey& key) noexcept override {
        EXPECT_EQ(parent, registry_key(kHkeyLocalMachine));
        return ForwardingRegistry::open_key(local_machine_, path, access, key);
    }
    std::int32_t create_key(RegistryKey parent, const char* path, const char* class_name, std::uint32_t access,
                            const SecurityAttributes& attributes, RegistryKey& key) noexcept override {
        EXPECT_EQ(parent, registry_key(kHkeyLocalMachine));
        if (read_only) return kAccessDenied;
        return ForwardingRegistry::create_key(local_machine_, path, class_name, access, attributes, key);
    }

    bool read_only = false;

private:
    RegistryKey local_machine_;
};

class UnusedToolkit : public forms::Toolkit {
public:
    MOCK_METHOD(void, run_modal, (forms::Form&, forms::Form*), (override));
    MOCK_METHOD(void, pump_messages, (), (override));
    MOCK_METHOD(forms::MessageAnswer, message_box, (const forms::MessageBox&), (override));
    MOCK_METHOD(std::optional<std::u16string>, open_file, (const forms::OpenFileRequest&), (override));
    MOCK_METHOD(void, pop_up_menu, (forms::Form&, forms::Menu&), (override));
    MOCK_METHOD(void, beep, (), (override));
};

class UnusedFiles : public Files {
public:
    MOCK_METHOD(bool, ordinary_file_exists, (const std::u16string&), (override));
};

class UnusedProcesses : public Processes {
public:
    MOCK_METHOD(bool, start, (const std::u16string&), (override));
};

class HostSettings : public TestKeyFixture {
protected:
    std::u16string read(const std::u16string& name, const std::u16string& default_value = u"the default") const {
        return ReadHostSetting(services, u"Brivola3", u"Settings", name, default_value);
    }

    RedirectedRegistry registry{side_registry(), key.get()};
    ::testing::StrictMock<UnusedToolkit> toolkit;
    ::testing::StrictMock<UnusedFiles> files;
    ::testing::StrictMock<UnusedProcesses> processes;
    com::ModuleLifetime module;
    Services services{toolkit, registry, files, processes, side_code_page(), module, u"C:\\Plug-ins"};
};

TEST_F(HostSettings, WhatIsMissingReadsAsTheDefault) {
    EXPECT_EQ(read(u"AppPath"), u"the default");
    EXPECT_EQ(read(u"AppPath", u""), u"");
    EXPECT_TRUE(key.subkeys().empty()) << "reading creates nothing";
    Key::created(key.get(), "Software\\Norvan\\Brivola3\\Settings");
    EXPECT_EQ(read(u"AppPath"), u"the default");
}

TEST_F(HostSettings, WritingCreatesTheKeysAndATextValue) {
    WriteHostSetting(services, u"Brivola3", u"Firmware", u"LastFilePath", u"C:\\Firmware");
    const Key section = Key::opened(key.get(), "Software\\Norvan\\Brivola3\\Firmware");
    ASSERT_TRUE(section);
    EXPECT_EQ(section.get("LastFilePath"), std::pair(std::uint32_t{kRegSz}, bytes_of({"C:\\Firmware\0", 12})));
    EXPECT_EQ(ReadHostSetting(services, u"Brivola3", u"Firmware", u"LastFilePath", u""), u"C:\\Firmware");

    WriteHostSetting(services, u"Brivola3", u"Firmware", u"LastFilePath", u"12");
    EXPECT_EQ(section.get("LastFilePath"), std::pair(std::uint32_t{kRegSz}, bytes_of({"12\0", 3})))
        << "what looks like a number is written as text";
}

TEST_F(HostSettings, NumbersReadAsDecimalText) {
    const Key section = Key::created(key.get(), "Software\\Norvan\\Brivola3\\Settings");
    section.set("EnableXPort", kRegDword, {0xFE, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(read(u"EnableXPort"), u"-2");
    section.set("EnableXPort", kRegBinary, {1, 2});
    EXPECT_THROW(read(u"EnableXPort"), RuntimeError) << "bytes are no text";
}

TEST_F(HostSettings, NamesAreJoinedAsTheyAre) {
    WriteHostSetting(services, u"App\\Deeper", u" Section ", u"Key\\Name", u"v");
    EXPECT_EQ(Key::opened(key.get(), "Software\\Norvan\\App\\Deeper\\ Section ").get("Key\\Name").first, kRegSz);
    EXPECT_EQ(ReadHostSetting(services, u"App", u"Deeper\\ Section ", u"key\\name", u""), u"v");
}

TEST_F(HostSettings, WhatCannotBeWrittenIsDroppedSilently) {
    registry.read_only = true;
    WriteHostSetting(services, u"Brivola3", u"Settings", u"AppPath", u"C:\\");
    EXPECT_EQ(read(u"AppPath"), u"the default");
}

}  // namespace
}  // namespace vex::test
