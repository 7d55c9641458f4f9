// What the Windows side takes nobody's word for: where libraries lie.
#include <gtest/gtest.h>

#include "platform/win32/windows_api.h"
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

}  // namespace
}  // namespace vex::platform::win32
