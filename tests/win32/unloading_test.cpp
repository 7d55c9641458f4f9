// The library leaves the process when the last reference is given back, and lets the threads that used it end.
#include <gtest/gtest.h>

#include "com/bstr.h"
#include "com/com_ptr.h"

namespace vex {
namespace {

constexpr char kLibraryFile[] = "vexFirmwarePlugin.dll";
constexpr CLSID kCatalogue = {0x09D14609, 0x0E72, 0x4D6E, {0xA3, 0xB6, 0xD8, 0x40, 0x9C, 0x89, 0x77, 0x02}};
constexpr DISPID kPluginNames = 0x68030003;
constexpr DWORD kPatience = 20000;  // milliseconds

bool is_loaded() { return GetModuleHandleA(kLibraryFile) != nullptr; }

/// Makes a catalogue and asks it for a name, which fills the apartment's data.
bool use(HMODULE library) {
    const auto get_class =
        reinterpret_cast<LPFNGETCLASSOBJECT>(reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
    com::ComPtr<IClassFactory> factory;
    com::ComPtr<IDispatch> catalogue;
    if (FAILED(get_class(kCatalogue, IID_IClassFactory, factory.put_void()))) return false;
    if (FAILED(factory->CreateInstance(nullptr, IID_IDispatch, catalogue.put_void()))) return false;
    VARIANTARG index = {};
    index.vt = VT_I2;
    DISPPARAMS arguments{&index, nullptr, 1, 0};
    return SUCCEEDED(
        catalogue->Invoke(kPluginNames, IID_NULL, 0, DISPATCH_PROPERTYGET, &arguments, nullptr, nullptr, nullptr));
}

struct Visit {
    bool frees = false;
    bool used = false;
    bool loaded_afterwards = true;
};

/// A thread that loads the library, uses it in an apartment of its own and gives its reference back, or not.
DWORD WINAPI visit(void* parameter) {
    Visit& visit = *static_cast<Visit*>(parameter);
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
    const HMODULE library = LoadLibraryA(kLibraryFile);
    visit.used = library != nullptr && use(library);
    if (visit.frees && library != nullptr) FreeLibrary(library);
    visit.loaded_afterwards = is_loaded();
    CoUninitialize();
    return 0;
}

/// Whether the thread came to its end.
bool run(Visit& task) {
    const HANDLE thread = CreateThread(nullptr, 0, visit, &task, 0, nullptr);
    const bool ended = WaitForSingleObject(thread, kPatience) == WAIT_OBJECT_0;
    CloseHandle(thread);
    return ended;
}

TEST(Unloading, TheLastReferenceTakesTheLibraryAwayOnAnyThread) {
    ASSERT_FALSE(is_loaded()) << "another test keeps it";
    Visit here{.frees = true};
    visit(&here);
    EXPECT_TRUE(here.used);
    EXPECT_FALSE(here.loaded_afterwards) << "on a thread that goes on";

    Visit elsewhere{.frees = true};
    ASSERT_TRUE(run(elsewhere)) << "the thread hangs at its end";
    EXPECT_TRUE(elsewhere.used);
    EXPECT_FALSE(elsewhere.loaded_afterwards);

    Visit keeps{.frees = false};
    ASSERT_TRUE(run(keeps));
    EXPECT_TRUE(keeps.used);
    ASSERT_TRUE(is_loaded()) << "the ended thread's reference is still there";
    FreeLibrary(GetModuleHandleA(kLibraryFile));
    EXPECT_FALSE(is_loaded());
}

}  // namespace
}  // namespace vex
