// The simulated computer: its folder, its drives, its programs and its code page.
#include "platform/native/machine.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <set>

#include "com/com.h"
#include "core/runtime_error.h"
#include "platform/native/registry_text.h"
#include "platform/system.h"
#include "tests/shared/error_of.h"
#include "tests/shared/temporary_folder.h"

namespace vex::platform::native {
namespace {

using test::error_of;
using test::TemporaryFolder;
using test::write_file;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Machine : public ::testing::Test {
protected:
    Machine() { use_machine_folder(computer); }

    TemporaryFolder folder;
    const std::filesystem::path computer = folder / "a computer";
    const std::filesystem::path drive_c = computer / "drive_c";
};

TEST_F(Machine, ItsFolderIsMadeForTheOwnerAlone) {
    EXPECT_EQ(machine_folder(), computer);
    for (const auto& each : {computer, drive_c}) {
        struct stat status = {};
        ASSERT_EQ(::stat(each.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0700U);
    }
    use_machine_folder(computer);
    use_machine_folder(computer.native() + "/");
    EXPECT_EQ(machine_folder(), computer);
}

TEST_F(Machine, NobodyElseCanPutFilesIntoItsFolder) {
    const std::filesystem::path open = folder / "open";
    std::filesystem::create_directory(open);
    std::filesystem::permissions(open, std::filesystem::perms::all);
    EXPECT_THROW(use_machine_folder(open), RuntimeError);
    EXPECT_EQ(machine_folder(), computer);
}

TEST_F(Machine, TheListOfHiddenFilesIsTheOwnersAndFollowsNoLink) {
    write_file(folder / "victim", "untouched");
    std::filesystem::create_symlink(folder / "victim", drive_c / ".hidden");
    const mode_t mask = ::umask(0);
    set_hidden(u"C:\\x", true);
    ::umask(mask);
    EXPECT_EQ(test::read_file(folder / "victim"), "untouched");
    struct stat status = {};
    ASSERT_EQ(::lstat((drive_c / ".hidden").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
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
        {folder / "file" / "below", (folder / "file" / "below").native()},
        {damaged, (damaged / "registry").native() + ": line 3"},
    };
    for (const auto& [unusable, told] : cases) {
        try {
            use_machine_folder(unusable);
            ADD_FAILURE() << unusable;
        } catch (const RuntimeError& error) {
            EXPECT_THAT(error.what(), HasSubstr(told));
        }
        EXPECT_EQ(machine_folder(), computer) << "the computer before is still there";
    }
}

TEST_F(Machine, ItsRegistryIsItsOwn) {
    const auto open = [](const char* path) {
        RegistryKey key = 0;
        return registry().open_key(registry_key(kHkeyCurrentUser), path, kKeyRead, key);
    };
    write_file(computer / "registry", std::string(kRegistryHeader) + "[HKEY_CURRENT_USER\\Written]\n");
    EXPECT_EQ(open("Written"), kSuccess);
    use_machine_folder(folder / "another");
    EXPECT_EQ(open("Written"), kFileNotFound);
    use_machine_folder(computer);
    EXPECT_EQ(open("Written"), kSuccess);
}

TEST_F(Machine, DriveLettersLeadIntoItsFolders) {
    std::filesystem::create_directories(drive_c / "Program Files/Brivola");
    std::filesystem::create_directory(computer / "drive_d");
    EXPECT_EQ(real_path(u"C:\\"), drive_c);
    EXPECT_EQ(real_path(u"C:"), drive_c);
    EXPECT_EQ(real_path(u"c:\\program files\\BRIVOLA\\New.txt"), drive_c / "Program Files/Brivola/New.txt");
    EXPECT_EQ(real_path(u"C:\\\\Program Files//Brivola\\"), drive_c / "Program Files/Brivola");
    EXPECT_EQ(real_path(u"C:\\Program Files\\..\\..\\..\\.\\Program Files"), drive_c / "Program Files");
    EXPECT_EQ(real_path(u"D:\\x"), computer / "drive_d/x");
    EXPECT_EQ(real_path(u"Z:\\"), "/");
    EXPECT_EQ(real_path(u"z:\\tmp"), "/tmp");
    for (const char16_t* path : {u"E:\\x", u"", u"C", u"x.txt", u"\\x", u"\\\\server\\x", u"1:\\x", u"?:\\x"}) {
        EXPECT_EQ(real_path(path), "");
    }
    EXPECT_EQ(real_path(std::u16string(u"C:\\a\0b", 6)), "");
}

TEST_F(Machine, TheSpellingAskedForComesFirst) {
    write_file(drive_c / "same", "");
    write_file(drive_c / "SAME", "");
    EXPECT_EQ(real_path(u"C:\\same"), drive_c / "same");
    EXPECT_EQ(real_path(u"C:\\SAME"), drive_c / "SAME");
    EXPECT_EQ(real_path(u"C:\\Same"), drive_c / "SAME") << "always the same of those that differ";
    write_file(drive_c / "Größe", "");
    EXPECT_EQ(real_path(u"C:\\GR\xD6\xDF"
                        u"E"),
              drive_c / "Größe");
}

TEST_F(Machine, RealFilesHaveDriveLetterPaths) {
    EXPECT_EQ(drive_path(drive_c / "Firmware/new.bin"), u"C:\\Firmware\\new.bin");
    EXPECT_EQ(drive_path(drive_c), u"C:\\");
    EXPECT_EQ(drive_path(drive_c / "a/../b"), u"C:\\b");
    EXPECT_EQ(drive_path(computer / "drive_d/x"), u"D:\\x");
    EXPECT_EQ(drive_path("/usr/lib"), u"Z:\\usr\\lib");
    EXPECT_EQ(drive_path("/"), u"Z:\\");
    EXPECT_EQ(real_path(drive_path(computer / "registry")), computer / "registry");
}

TEST_F(Machine, OnlyOrdinaryFilesExist) {
    std::filesystem::create_directory(drive_c / "Folder");
    for (const char* name : {"Folder/file.bin", "Folder/hidden.bin", "Folder/.dot"}) write_file(drive_c / name, "");
    std::filesystem::create_symlink("file.bin", drive_c / "Folder/link.bin");
    std::filesystem::create_symlink("nowhere", drive_c / "Folder/dangling.bin");
    set_hidden(u"C:\\folder\\HIDDEN.bin", true);
    EXPECT_TRUE(ordinary_file_exists(u"C:\\Folder\\link.bin"));
    for (const char16_t* path : {u"C:\\Folder\\.dot", u"C:\\Folder\\.hidden", u"C:\\Folder\\dangling.bin",
                                 u"C:\\Folder\\hidden.bin", u"C:\\Folder\\file.bin\\x", u"E:\\x", u"Z:\\dev\\null"}) {
        EXPECT_FALSE(ordinary_file_exists(path)) << real_path(path);
    }
    set_hidden(u"C:\\Folder\\hidden.bin", false);
    EXPECT_TRUE(ordinary_file_exists(u"C:\\Folder\\hidden.bin"));
    for (const char16_t* path : {u"C:\\Missing\\x", u"E:\\x"}) EXPECT_NE(error_of([&] { set_hidden(path, true); }), 0);
}

TEST_F(Machine, ProgramsThatExistStartAndAreToldOf) {
    write_file(drive_c / "tool.exe", "");
    std::vector<std::u16string> started;
    on_program_started([&](const std::u16string& path) { started.push_back(path); });
    EXPECT_TRUE(start_program(u"C:\\Tool.exe"));
    EXPECT_THAT(started, ElementsAre(u"C:\\Tool.exe"));
    on_program_started(nullptr);
    EXPECT_TRUE(start_program(u"C:\\tool.exe"));
}

// ---- The ANSI code page

TEST(CodePage1252, EveryByteSurvivesBothWays) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    const std::u16string text = from_ansi(bytes);
    EXPECT_EQ(text.size(), 256U);
    EXPECT_EQ(std::set<char16_t>(text.begin(), text.end()).size(), 256U);
    EXPECT_EQ(to_ansi(text), bytes);
}

TEST(CodePage1252, CharactersStandWhereThePageHasThem) {
    EXPECT_EQ(to_ansi(u"Z\xFCrich \x20AC \x201Cx\x201D \x2122"), "Z\xFCrich \x80 \x93x\x94 \x99");
    EXPECT_EQ(from_ansi("\x8A\x9F\xA0\xFF"), u"\x0160\x0178\x00A0\x00FF");
}

TEST(CodePage1252, WhatThePageLacksBecomesAQuestionMarkForEachUnit) {
    EXPECT_EQ(to_ansi(u"a\x4E2D\x0101"
                      u"b\xD83D\xDE00\xFFFD"),
              "a??b???");
    EXPECT_EQ(to_ansi(u"\x0080"), "?") << "a control character whose byte is another character's";
}

}  // namespace
}  // namespace vex::platform::native
