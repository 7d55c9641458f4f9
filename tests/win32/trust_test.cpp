// What the Windows side takes nobody's word for: where libraries lie, and what a clean-up may remove.
#include <gtest/gtest.h>

#include "platform/class_keys.h"
#include "platform/win32/windows_api.h"
#include "simulator/win32/win32_session.h"
#include "simulator/words.h"

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

TEST(ClassRegistration, RemovesNoKeyThatIsNoClass) {
    constexpr char16_t kBystander[] = u"CLSID\\VexTestIsNoIdentity";
    write_class_text(u"Vex.Test\\CLSID", u"", u"VexTestIsNoIdentity");
    write_class_text(kBystander, u"", u"x");
    sim::remove_class(u"Vex.Test");
    const auto holds_text = [](const char16_t* key) {
        return RegGetValueW(HKEY_CLASSES_ROOT, wide(key), nullptr, RRF_RT_REG_SZ, nullptr, nullptr, nullptr) == 0;
    };
    EXPECT_FALSE(holds_text(u"Vex.Test\\CLSID"));
    EXPECT_TRUE(holds_text(kBystander));
    RegDeleteTreeW(HKEY_CLASSES_ROOT, wide(kBystander));
}

}  // namespace
}  // namespace vex::platform::win32
