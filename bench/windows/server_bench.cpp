// What a COM server costs its host: ours and a minimal one, both in the current folder, side by side.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
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

constexpr double kGoal = 1.5;
constexpr int kRounds = 101;
constexpr int kObjects = 1000;
constexpr int kObjectsByClassId = 20;

void check(HRESULT result, const char* what) {
    if (SUCCEEDED(result)) return;
    char text[80];
    std::snprintf(text, sizeof text, "%s fails: %08lx", what, static_cast<unsigned long>(result));
    throw RuntimeError(result, from_utf8(text));
}

Microseconds time_of(const std::function<void()>& action) {
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
        check(get_class_object(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.put())), "DllGetClassObject");
        com::ComPtr<IDispatch> object;
        check(factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(object.put())),
              "CreateInstance");
        return object;
    }
    com::ComPtr<IDispatch> create_by_class_id() const {
        com::ComPtr<IDispatch> object;
        check(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                               reinterpret_cast<void**>(object.put())),
              "CoCreateInstance");
        return object;
    }
};

/// The product first, then the yardstick.
using Servers = std::array<Server, 2>;
using Times = std::array<std::vector<Microseconds>, 2>;

Microseconds median(std::vector<Microseconds> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::ranges::nth_element(times, middle);
    return *middle;
}

void print_headings() {
    std::printf("%-34s %21s %21s %15s\n", "microseconds", "product", "minimal server", "ratio");
    std::printf("%-34s %10s %10s %10s %10s %7s %7s\n", "", "minimum", "median", "minimum", "median", "minimum",
                "median");
}

/// `per`: how many things of each server a time is for.
void print(const char* what, const Times& times, std::array<double, 2> per = {1, 1}) {
    std::array<Microseconds, 2> least{};
    std::array<Microseconds, 2> middle{};
    for (std::size_t i = 0; i < 2; ++i) {
        least[i] = std::ranges::min(times[i]) / per[i];
        middle[i] = median(times[i]) / per[i];
    }
    std::printf("%-34s %10.3f %10.3f %10.3f %10.3f %7.2f %7.2f\n", what, least[0], middle[0], least[1], middle[1],
                least[0] / least[1], middle[0] / middle[1]);
}

/// Measures both in turn; who comes first changes from round to round.
template <class Measure>
void in_turn(Servers& servers, Measure&& measure) {
    for (int round = 0; round < kRounds; ++round) {
        for (int turn = 0; turn < 2; ++turn) {
            const auto which = static_cast<std::size_t>((round + turn) % 2);
            measure(servers[which], which);
        }
    }
}

void measure_load(Servers& servers, const char* what) {
    Times times;
    in_turn(servers, [&](const Server& server, std::size_t which) {
        times[which].push_back(time_of([&] {
            const Library library(server.file);
            for (const char* name :
                 {"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"}) {
                (void)library.function<void (*)()>(name);
            }
        }));
    });
    print(what, times);
}

void measure_registration(Servers& servers) {
    Times written;
    Times removed;
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
    Times created;
    Times created_by_class_id;
    Times released;
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
    const auto size = [](const Server& server) { return static_cast<unsigned long>(file_size(server.file)); };
    std::printf(
        "server: product %lu bytes, minimal server %lu bytes, %d bits; at most %.1f times its costs are allowed\n",
        size(servers[0]), size(servers[1]), static_cast<int>(sizeof(void*) * 8), kGoal);
    const auto registered = [](const Server& server) {
        return std::to_string(server.registry_values) + " in " + std::to_string(server.registry_keys) + " keys";
    };
    std::printf("registry values: product %s, minimal server %s\n", registered(servers[0]).c_str(),
                registered(servers[1]).c_str());
    print_headings();

    measure_load(servers, "load and free, in a bare process");
    {
        // What every automation host with windows has loaded already.
        const LateLibrary automation(u"oleaut32.dll");
        const LateLibrary windows(u"user32.dll");
        const LateLibrary dialogs(u"comdlg32.dll");
        const LateLibrary controls(u"comctl32.dll");
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
