// What the library in the current folder costs a host that loads it, on Windows.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <vector>

#include "com/com_ptr.h"
#include "com/late_call.h"
#include "core/unicode.h"
#include "platform/library.h"
#include "platform/win32/windows_api.h"
#include "simulator/win32/win32_session.h"

namespace vex {
namespace {

using Action = std::function<void()>;

constexpr char16_t kClassName[] = u"vexFirmWarePlugin.vexFirmWareUtil";
constexpr int kRounds = 101;
constexpr int kObjects = 1000;
constexpr int kObjectsByClassId = 20;

void check(HRESULT result) {
    if (FAILED(result)) throw com::error_of(result);
}

/// Does something and takes it back, many times, and prints the fastest time of either; `count`: for one of how many.
void measure(const char* what, const Action& action, const char* back, const Action& reverse, int count = 1) {
    struct {
        const char* what;
        const Action& action;
        double fastest = std::numeric_limits<double>::max();
    } both[] = {{what, action}, {back, reverse}};
    for (int round = 0; round < kRounds; ++round) {
        for (auto& each : both) {
            const auto start = std::chrono::steady_clock::now();
            each.action();
            const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
            each.fastest = std::min(each.fastest, time.count() / count);
        }
    }
    for (const auto& each : both) std::printf("%-32s %10.3f us\n", each.what, each.fastest);
}

void measure_all(const std::filesystem::path& file) {
    // What every host with windows has loaded already.
    const platform::win32::LateLibrary automation(u"oleaut32.dll"), windows(u"user32.dll"), dialogs(u"comdlg32.dll"),
        controls(u"comctl32.dll");
    std::optional<platform::Library> library;
    const Action load = [&] { library.emplace(file); };
    measure("load", load, "free", [&] { library.reset(); });
    load();

    const auto call = [&](const char* name) {
        return [&library, name] { check(library->function<HRESULT(STDAPICALLTYPE*)()>(name)()); };
    };
    measure("register", call("DllRegisterServer"), "unregister", call("DllUnregisterServer"));
    call("DllRegisterServer")();

    CLSID clsid = GUID_NULL;
    com::ComPtr<IClassFactory> factory;
    std::vector<com::ComPtr<IDispatch>> objects;
    const Action release = [&] { objects.clear(); };
    check(CLSIDFromProgID(platform::win32::wide(kClassName), &clsid));
    check(library->function<decltype(&DllGetClassObject)>("DllGetClassObject")(clsid, IID_IClassFactory,
                                                                               factory.put_void()));
    const auto create = [&] {
        for (int i = 0; i < kObjects; ++i) {
            check(factory->CreateInstance(nullptr, IID_IDispatch, objects.emplace_back().put_void()));
        }
    };
    const auto create_by_class_id = [&] {
        for (int i = 0; i < kObjectsByClassId; ++i) {
            void** const object = objects.emplace_back().put_void();
            check(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object));
        }
    };
    measure("create, from the class object", create, "release", release, kObjects);
    measure("create, by class id", create_by_class_id, "release", release, kObjectsByClassId);
    factory.reset();
    call("DllUnregisterServer")();
}

}  // namespace
}  // namespace vex

int main() {
    using namespace vex;
    if (sim::class_has_server(kClassName)) {
        std::fputs("the plug-in is installed here; its registration would not survive\n", stderr);
        return 1;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    try {
        measure_all(std::filesystem::absolute("vexFirmwarePlugin.dll"));
    } catch (const RuntimeError& error) {
        std::fprintf(stderr, "%s\n", to_utf8(error.description()).c_str());
        return 1;
    }
    CoUninitialize();
    return 0;
}
