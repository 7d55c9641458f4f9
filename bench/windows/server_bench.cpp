// What a COM server costs its host: ours and a minimal one, both in the current folder, side by side.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <optional>
#include <set>
#include <vector>

#include "bench/windows/minimal_server.h"
#include "com/com_ptr.h"
#include "core/runtime_error.h"
#include "core/unicode.h"
#include "platform/library.h"
#include "platform/win32/windows_api.h"
#include "plugin/contract.h"
#include "plugin/registration.h"
#include "simulator/win32/win32_session.h"

namespace vex::bench {
namespace {

using platform::Library;
using platform::win32::LateLibrary;
using Microseconds = double;

constexpr std::size_t kRounds = 101;
constexpr int kObjects = 1000;
constexpr int kObjectsByClassId = 20;

void check(HRESULT result, const char* what) {
    if (FAILED(result)) throw RuntimeError(result, from_utf8(what) + u" fails");
}

template <class Action>
Microseconds time_of(const Action& action) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    action();
    return std::chrono::duration<Microseconds, std::micro>(Clock::now() - start).count();
}

/// A library as its host knows it.
struct Server {
    std::filesystem::path file;
    CLSID clsid;
    std::size_t registry_values;
    std::size_t registry_keys;
    std::optional<Library> library = std::nullopt;

    void call(const char* name) const { check(library->function<HRESULT(STDAPICALLTYPE*)()>(name)(), name); }
    com::ComPtr<IDispatch> create() const {
        const auto get_class_object = library->function<decltype(&DllGetClassObject)>("DllGetClassObject");
        com::ComPtr<IClassFactory> factory;
        check(get_class_object(clsid, IID_IClassFactory, factory.put_void()), "DllGetClassObject");
        com::ComPtr<IDispatch> object;
        check(factory->CreateInstance(nullptr, IID_IDispatch, object.put_void()), "CreateInstance");
        return object;
    }
    com::ComPtr<IDispatch> create_by_class_id() const {
        com::ComPtr<IDispatch> object;
        check(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.put_void()),
              "CoCreateInstance");
        return object;
    }
};

/// The product first, then the yardstick.
using Servers = std::array<Server, 2>;
using Times = std::array<std::vector<Microseconds>, 2>;

/// The fastest rounds. `per`: how many things of each server a time is for.
void print(const char* what, const Times& times, std::array<double, 2> per = {1, 1}) {
    const Microseconds product = std::ranges::min(times[0]) / per[0], minimal = std::ranges::min(times[1]) / per[1];
    std::printf("%-34s %10.3f %10.3f %7.2f\n", what, product, minimal, product / minimal);
}

/// Measures both in turn; who comes first changes from round to round.
template <class Measure>
void in_turn(Servers& servers, const Measure& measure) {
    for (std::size_t turn = 0; turn < 2 * kRounds; ++turn) {
        const std::size_t which = (turn + turn / 2) % 2;
        measure(servers[which], which);
    }
}

void measure_load(Servers& servers, const char* what) {
    Times times;
    in_turn(servers, [&](const Server& server, std::size_t which) {
        times[which].push_back(time_of([&] {
            const Library library(server.file);
            for (const char* name : {"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"})
                (void)library.function<void (*)()>(name);
        }));
    });
    print(what, times);
}

void measure_registration(Servers& servers) {
    Times written, removed;
    in_turn(servers, [&](const Server& server, std::size_t which) {
        written[which].push_back(time_of([&] { server.call("DllRegisterServer"); }));
        removed[which].push_back(time_of([&] { server.call("DllUnregisterServer"); }));
    });
    const auto count = [&](std::size_t Server::*what) {
        return std::array{static_cast<double>(servers[0].*what), static_cast<double>(servers[1].*what)};
    };
    print("register", written);
    print("register, per registry value", written, count(&Server::registry_values));
    print("register, per registry key", written, count(&Server::registry_keys));
    print("unregister", removed);
    print("unregister, per registry value", removed, count(&Server::registry_values));
    print("unregister, per registry key", removed, count(&Server::registry_keys));
}

void measure_objects(Servers& servers) {
    Times created, created_by_class_id, released;
    for (Server& server : servers) server.call("DllRegisterServer");
    in_turn(servers, [&](const Server& server, std::size_t which) {
        std::vector<com::ComPtr<IDispatch>> objects;
        objects.reserve(kObjects);
        const auto create = [&](int count, auto method) {
            for (int i = 0; i < count; ++i) objects.push_back((server.*method)());
        };
        created[which].push_back(time_of([&] { create(kObjects, &Server::create); }));
        released[which].push_back(time_of([&] { objects.clear(); }));
        created_by_class_id[which].push_back(time_of([&] { create(kObjectsByClassId, &Server::create_by_class_id); }));
    });
    for (Server& server : servers) server.call("DllUnregisterServer");
    print("create, from the class object", created, {kObjects, kObjects});
    print("create, by class id", created_by_class_id, {kObjectsByClassId, kObjectsByClassId});
    print("release", released, {kObjects, kObjects});
}

void measure(const std::filesystem::path& folder) {
    const auto entries = plugin::registration_entries(u"", u"");
    std::set<std::u16string> keys;
    for (const plugin::RegistrationEntry& entry : entries) keys.insert(entry.key);
    Servers servers{
        Server{folder / "vexFirmwarePlugin.dll", plugin::kFirmWareUtilClass.id, entries.size(), keys.size()},
        Server{folder / "minimal_server.dll", kMinimalClass, kMinimalValues, kMinimalKeys}};
    std::printf("a server's costs, %d bits; goal: at most 1.5 times those of the minimal one\n",
                static_cast<int>(sizeof(void*) * 8));
    for (const Server& server : servers) {
        std::printf("%s: %lu bytes, registers %zu values in %zu keys\n", server.file.filename().string().c_str(),
                    static_cast<unsigned long>(file_size(server.file)), server.registry_values, server.registry_keys);
    }
    std::printf("%-34s %10s %10s %7s\n", "microseconds", "product", "minimal", "ratio");

    measure_load(servers, "load and free, in a bare process");
    {
        // What every automation host with windows has loaded already.
        const LateLibrary automation(u"oleaut32.dll"), windows(u"user32.dll"), dialogs(u"comdlg32.dll"),
            controls(u"comctl32.dll");
        measure_load(servers, "load and free, in a host");
    }
    for (Server& server : servers) server.library.emplace(server.file);
    measure_registration(servers);
    measure_objects(servers);
}

}  // namespace
}  // namespace vex::bench

int main() {
    using namespace vex;
    if (sim::class_has_server(u"vexFirmWarePlugin.vexFirmWareUtil")) {
        std::fputs("the plug-in is installed here; its registration would not survive\n", stderr);
        return 1;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    try {
        bench::measure(std::filesystem::current_path());
    } catch (const RuntimeError& error) {
        std::fprintf(stderr, "%s\n", to_utf8(error.description()).c_str());
        return 1;
    }
    CoUninitialize();
    return 0;
}
