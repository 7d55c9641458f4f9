// The simulated computer: its folder, its drives, and its servers.
#include "platform/native/machine.h"

#include <gmock/gmock.h>

#include "com/com.h"
#include "com/native/server.h"
#include "core/runtime_error.h"
#include "platform/native/registry_text.h"
#include "tests/shared/temporary_folder.h"

namespace vex::platform::native {
namespace {

using test::TemporaryFolder;
using test::write_file;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

class Machine : public ::testing::Test {
protected:
    Machine() { use_machine_folder(computer); }

    TemporaryFolder folder;
    const std::filesystem::path computer = folder / "a computer";
    const std::filesystem::path drive_c = computer / "drive_c";
};

TEST_F(Machine, NobodyElseCanPutFilesIntoItsFolder) {
    const std::filesystem::path open = folder / "open";
    std::filesystem::create_directory(open);
    std::filesystem::permissions(open, std::filesystem::perms::all);
    EXPECT_THROW(use_machine_folder(open), RuntimeError);
    EXPECT_EQ(machine_folder(), computer);
    EXPECT_EQ(std::filesystem::status(computer).permissions(), std::filesystem::perms::owner_all);
}

TEST_F(Machine, ServersAreLoadedByFullPathAlone) {
    constexpr CLSID kClass = {0x5B8D3A10, 0x2B1E, 0x4E0B, {0x9A, 0x1D, 0x0C, 0x1B, 0x7E, 0x52, 0x44, 0x02}};
    RegistryKey key = 0;
    ASSERT_EQ(registry().create_key(registry_key(kHkeyClassesRoot),
                                    "CLSID\\{5B8D3A10-2B1E-4E0B-9A1D-0C1B7E524402}\\InprocServer32", nullptr,
                                    kKeyAllAccess, {}, key),
              kSuccess);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    for (const std::string server : {"libm.so.6", "libvexFirmwarePlugin.so", "E:\\server.dll"}) {
        registry().set_value(key, "", kRegSz, reinterpret_cast<const std::uint8_t*>(server.c_str()),
                             static_cast<std::uint32_t>(server.size() + 1));
        void* object = nullptr;
        EXPECT_EQ(CoCreateInstance(kClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object), CO_E_DLLNOTFOUND)
            << server;
    }
    CoUninitialize();
}

TEST_F(Machine, WhatCannotBeUsedIsNamed) {
    write_file(folder / "file", "");
    const std::filesystem::path damaged = folder / "damaged";
    std::filesystem::create_directory(damaged);
    write_file(damaged / "registry", std::string(kRegistryHeader) + "\noops\n");
    const std::pair<std::filesystem::path, std::string> cases[] = {
        {folder / "file", (folder / "file").native()},
        {damaged, (damaged / "registry").native() + ": line 3"},
    };
    for (const auto& [unusable, told] : cases) {
        EXPECT_THAT([&] { use_machine_folder(unusable); }, ThrowsMessage<RuntimeError>(HasSubstr(told)));
        EXPECT_EQ(machine_folder(), computer) << "the computer before is still there";
    }
}

TEST_F(Machine, DriveLettersLeadIntoItsFoldersAndBack) {
    std::filesystem::create_directories(drive_c / "Program Files/Brivola");
    EXPECT_EQ(real_path(u"C:"), drive_c);
    EXPECT_EQ(real_path(u"c:\\program files//BRIVOLA\\New.txt"), drive_c / "Program Files/Brivola/New.txt");
    EXPECT_EQ(real_path(u"C:\\Program Files\\..\\..\\..\\.\\Program Files"), drive_c / "Program Files");
    EXPECT_EQ(real_path(u"z:\\tmp"), "/tmp");
    for (const char16_t* path : {u"E:\\x", u"", u"C", u"\\x", u"\\\\server\\x", u"1:\\x", u"?:\\x"})
        EXPECT_EQ(real_path(path), "");
    EXPECT_EQ(real_path(std::u16string(u"C:\\a\0b", 6)), "");
    EXPECT_EQ(drive_path(drive_c / "a/../Firmware/new.bin"), u"C:\\Firmware\\new.bin");
    EXPECT_EQ(drive_path(drive_c), u"C:\\");
    EXPECT_EQ(drive_path("/usr/lib"), u"Z:\\usr\\lib");
    EXPECT_THROW(com::native::module_path(nullptr), RuntimeError) << "no module lies there";
}

}  // namespace
}  // namespace vex::platform::native
