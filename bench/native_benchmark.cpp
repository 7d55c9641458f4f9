// What the plug-in costs on the native side: settings in the registry's file, the wizard, and an update run.
#include <benchmark/benchmark.h>

#include <fstream>
#include <sstream>
#include <string>

#include "com/com.h"
#include "core/digits.h"
#include "forms/scripted_toolkit.h"
#include "platform/native/machine.h"
#include "platform/native/registry_text.h"
#include "platform/registry.h"
#include "simulator/class_library.h"
#include "simulator/native/native_session.h"
#include "simulator/words.h"
#include "support/registry_routines.h"
#include "support/services.h"
#include "update/dlg_disp_updater.h"
#include "wizard/dlg_firmware_wizard.h"

namespace vex {
namespace {

// ---- Settings, in a key with many of the usual length. A write writes the whole file.

constexpr char16_t kKey[] = u"Software\\Settings";
constexpr char16_t kName[] = u"Setting 42";

struct Settings {
    explicit Settings(std::int64_t count) {
        std::ofstream file(platform::native::machine_folder() / "registry");
        file << platform::native::kRegistryHeader << "[HKEY_LOCAL_MACHINE\\Software\\Settings]\n";
        for (std::int64_t i = 0; i < count; ++i) {
            file << "\"Setting " << i << "\"=\"C:\\\\Program Files\\\\Brivola\\\\" << i << "\"\n";
        }
        routines.set_hKey(platform::kHkeyLocalMachine);
        routines.set_KeyRoot(kKey);
    }
    RegistryRoutines routines{platform::registry()};
};

void read_setting(benchmark::State& state) {
    Settings settings(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(settings.routines.GetRegistryValue(kName));
}

void write_setting(benchmark::State& state) {
    Settings settings(state.range(0));
    std::int32_t number = 0;
    for (auto _ : state) settings.routines.SetRegistryValue(kName, ++number, platform::kRegDword);
}

void enumerate_settings(benchmark::State& state) {
    Settings settings(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(settings.routines.EnumRegistryValues(platform::kHkeyLocalMachine, kKey));
    }
}

BENCHMARK(read_setting)->Arg(100)->Arg(1'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(write_setting)->Arg(100)->Arg(1'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(enumerate_settings)->Arg(100)->Arg(1'000)->Unit(benchmark::kMicrosecond);

// ---- Dialogs, for a user who closes whatever is shown

/// A simulated host with displays of its own, and what a plug-in beside it is given.
struct Bed {
    explicit Bed(std::int64_t displays) {
        host.display_file = platform::native::real_path(u"C:\\Displays.dat");
        for (std::int64_t i = 0; i < displays; ++i) {
            sim::Display display;
            display.name = u"Display " + decimal_text(i);
            display.port = u"COM" + decimal_text(i);
            names += (i == 0 ? u"" : u",") + display.name;
            host.put_display(std::move(display));
        }
        host.save_displays();
    }

    std::ostringstream nowhere;
    sim::Trace trace{nowhere, true};
    sim::NativeMachine computer;
    sim::Host host{trace, computer};
    const sim::HostClasses classes{host};
    std::u16string names;
    forms::ScriptedUser user;
    forms::ScriptedToolkit toolkit{user};
    com::ModuleLifetime module;
    const Services services{toolkit, platform::registry(), module, u"C:\\Host"};
};

void open_wizard(benchmark::State& state) {
    const Bed bed(10);
    for (auto _ : state) {
        dlgFirmwareWizard wizard(bed.services, [](forms::Form&) {});
        wizard.show_modal();
    }
}

void reset_displays(benchmark::State& state) {
    const Bed bed(state.range(0));
    for (auto _ : state) {
        dlgDispUpdater updater(bed.services);
        updater.sDisplays = bed.names;
        updater.bJustReset = true;
        updater.show_modal();
    }
    using benchmark::Counter;
    state.counters["per display"] =
        Counter(static_cast<double>(state.range(0)), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

BENCHMARK(open_wizard)->Unit(benchmark::kMicrosecond);
BENCHMARK(reset_displays)->RangeMultiplier(10)->Range(1, 10'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vex

int main(int count, char** arguments) {
    const vex::sim::PrivateFolder folder;
    vex::platform::native::use_machine_folder(folder.path());
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    CoUninitialize();
    return 0;
}
