// What the Windows side takes nobody's word for: where libraries lie and paths lead, and what a clean-up may remove.
#include <gtest/gtest.h>

#include "platform/win32/system.h"
#include "platform/win32/windows_api.h"
#include "simulator/words.h"
#include "simulator/win32/win32_session.h"

namespace vex::platform::win32 {
namespace {

TEST(LateLibrary, IsTheSystemsOwn) {
    EXPECT_NO_THROW(LateLibrary(u"version.dll"));
    // Beside this program and in the current folder, where the loader looks otherwise.
    const std::filesystem::path beside = std::filesystem::path(module_path()).replace_filename("vexPlanted.dll");
    const sim::PrivateFolder folder;
    const std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    for (const std::filesystem::path& planted : {beside, folder.path() / "vexPlanted.dll"}) {
        std::filesystem::copy_file(std::filesystem::path(beside).replace_filename("vexFirmwarePlugin.dll"), planted);
        EXPECT_THROW(LateLibrary(u"vexPlanted.dll"), RuntimeError) << planted;
        std::error_code left_loaded;
        std::filesystem::remove(planted, left_loaded);
    }
    std::filesystem::current_path(here);
}

TEST(PrivateDrives, NoPathLeavesTheirFolder) {
    // The computer stands in for what the program itself uses.
    registry();
    const sim::PrivateFolder folder;
    sim::Win32Machine machine(u"", folder.path(), false);
    for (const char16_t* path : {u"C:\\..\\..\\x", u"C:..\\x", u"c:/../a/../../x", u"C:\\\\x"}) {
        EXPECT_EQ(machine.real_path(path), folder.path() / "drive_c" / "x");
    }
}

sim::OwnedKey class_root_key(const char16_t* path, const std::u16string& text) {
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_CLASSES_ROOT, wide(path), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>(2 * (text.size() + 1)));
    return sim::OwnedKey(key);
}

bool exists(const char16_t* path) {
    HKEY key = nullptr;
    return RegOpenKeyExW(HKEY_CLASSES_ROOT, wide(path), 0, KEY_READ, &key) == ERROR_SUCCESS && RegCloseKey(key) == 0;
}

TEST(ClassRegistration, RemovesNoKeyThatIsNoClass) {
    class_root_key(u"Vex.Test\\CLSID", u"VexTestIsNoIdentity");
    class_root_key(u"CLSID\\VexTestIsNoIdentity", u"");
    sim::remove_class(u"Vex.Test");
    EXPECT_FALSE(exists(u"Vex.Test"));
    EXPECT_TRUE(exists(u"CLSID\\VexTestIsNoIdentity"));
    RegDeleteTreeW(HKEY_CLASSES_ROOT, wide(u"CLSID\\VexTestIsNoIdentity"));
}

}  // namespace
}  // namespace vex::platform::win32
