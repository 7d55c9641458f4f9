// Libraries: where the Windows side looks for them, and that the plug-in's leaves the process when the last reference is
// given back, and lets the threads that used it end.
#include "platform/win32/windows_api.h"
#include "simulator/words.h"
#include "tests/plugin/plugin_fixture.h"

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

// ---- Unloading

constexpr char kLibraryFile[] = "vexFirmwarePlugin.dll";

bool is_loaded() { return GetModuleHandleA(kLibraryFile) != nullptr; }

/// Makes a catalogue and asks it for a name, which fills the apartment's data.
void use(HMODULE library) {
    const auto get_class =
        reinterpret_cast<LPFNGETCLASSOBJECT>(reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
    com::ComPtr<IClassFactory> factory;
    com::ComPtr<IDispatch> catalogue;
    ASSERT_EQ(get_class(plugin_test::kCatalogueClass, IID_IClassFactory, factory.put_void()), S_OK);
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, catalogue.put_void()), S_OK);
    const auto name =
        plugin_test::call(*catalogue, plugin_test::kPluginNames, DISPATCH_PROPERTYGET, {com::Variant::int16(0)});
    EXPECT_EQ(name.result, S_OK);
}

/// Loads the library, uses it in an apartment of the thread's own and gives the reference back, or not.
DWORD WINAPI visit(void* frees) {
    EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    const HMODULE library = LoadLibraryA(kLibraryFile);
    use(library);
    if (frees != nullptr) FreeLibrary(library);
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
    FreeLibrary(GetModuleHandleA(kLibraryFile));
    EXPECT_FALSE(is_loaded());
}

}  // namespace
}  // namespace vex::platform::win32
