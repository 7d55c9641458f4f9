// What the native registry costs the registry access class: opening a store, reading, writing and enumerating its
// values. A write writes the whole file, so that is measured where somebody would still wait for it.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/native/registry_service.h"
#include "support/registry_routines.h"

namespace vex::platform::native {
namespace {

constexpr char16_t kKey[] = u"Software\\Settings";

/// A computer whose registry has one key with many values of the usual length.
struct Computer {
    explicit Computer(std::int64_t values) {
        std::filesystem::create_directories(folder);
        std::ofstream file(folder / "registry");
        file << kRegistryHeader << "[HKEY_LOCAL_MACHINE\\Software\\Settings]\n";
        for (std::int64_t i = 0; i < values; ++i) {
            file << "\"Setting number " << 1'000'000 + i << "\"=\"C:\\\\Program Files\\\\Brivola\\\\" << i << "\"\n";
        }
        file.close();
        service.use_folder(folder);
        routines.set_hKey(kHkeyLocalMachine);
        routines.set_KeyRoot(kKey);
    }
    ~Computer() { std::filesystem::remove_all(folder); }

    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "vex-registry-benchmark";
    RegistryService service;
    RegistryRoutines routines{service};
};

void open_store(benchmark::State& state) {
    const Computer computer(state.range(0));
    for (auto _ : state) RegistryService().use_folder(computer.folder);
}

void read_value(benchmark::State& state) {
    Computer computer(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(computer.routines.GetRegistryValue(u"Setting number 1000042"));
}

void write_value(benchmark::State& state) {
    Computer computer(state.range(0));
    for (std::int32_t count = 0; auto _ : state) {
        computer.routines.SetRegistryValue(u"Setting number 1000042", ++count, kRegDword);
    }
}

void enumerate_values(benchmark::State& state) {
    Computer computer(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(computer.routines.EnumRegistryValues(kHkeyLocalMachine, kKey));
}

BENCHMARK(open_store)->Arg(100)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(read_value)->Arg(100)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(write_value)->Arg(100)->Arg(10'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(enumerate_values)->Arg(100)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vex::platform::native
