// Libraries: where the Windows side looks for them, and that the plug-in's leaves the process when the last reference is
// given back, and lets the threads that used it end.
#include "platform/win32/windows_api.h"
#include "simulator/words.h"
#include "tests/plugin/plugin_fixture.h"

std::filesystem::path vex::plugin_test::plugin_file() {
    return std::filesystem::path(platform::win32::module_path()).replace_filename("vexFirmwarePlugin.dll");
}

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
        std::filesystem::copy_file(plugin_test::plugin_file(), planted);
        EXPECT_THROW(LateLibrary(u"vexPlanted.dll"), RuntimeError) << planted;
        std::error_code left_loaded;
        std::filesystem::remove(planted, left_loaded);
    }
    std::filesystem::current_path(here);
}

// ---- Unloading

bool is_loaded() { return GetModuleHandleW(plugin_test::plugin_file().c_str()) != nullptr; }

/// Loads the library, asks for a name in an apartment of the thread's own, which fills that one's data, and gives the
/// reference back, or not.
DWORD WINAPI visit(void* frees) {
    EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    EXPECT_EQ(plugin_test::call(*plugin_test::make(plugin_test::kCatalogueClass), plugin_test::kPluginNames,
                                DISPATCH_PROPERTYGET, {com::Variant::int16(0)})
                  .result,
              S_OK);
    if (frees != nullptr) plugin_test::library.reset();
    EXPECT_EQ(is_loaded(), frees == nullptr);
    CoUninitialize();
    return 0;
}

void visit_on_another_thread(void* frees) {
    constexpr DWORD kPatience = 20000;  // milliseconds
    const HANDLE thread = CreateThread(nullptr, 0, visit, frees, 0, nullptr);
    ASSERT_EQ(WaitForSingleObject(thread, kPatience), WAIT_OBJECT_0) << "the thread hangs at its end";
    CloseHandle(thread);
}

TEST(Unloading, TheLastReferenceTakesTheLibraryAwayOnAnyThread) {
    ASSERT_FALSE(is_loaded()) << "another test keeps it";
    int yes = 0;
    visit(&yes);
    visit_on_another_thread(&yes);
    visit_on_another_thread(nullptr);
    ASSERT_TRUE(is_loaded()) << "the ended thread's reference is still there";
    plugin_test::library.reset();
    EXPECT_FALSE(is_loaded());
}

}  // namespace
}  // namespace vex::platform::win32
