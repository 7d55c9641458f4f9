// What the native registry costs: opening a store, reading, writing and enumerating its values. A write writes the
// whole file, so that is measured where somebody would still wait for it.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/native/code_page_1252.h"
#include "platform/native/registry_service.h"
#include "support/registry_routines.h"

namespace vex::platform::native {
namespace {

constexpr RegistryKey kRoot = registry_key(kHkeyLocalMachine);
constexpr char kPath[] = "Software\\Norvan\\Brivola3\\Settings";
const CodePage1252 kCodePage;

/// In the order of their numbers, as the store writes them.
std::string name_of(std::int64_t index) { return "Setting number " + std::to_string(1'000'000 + index); }

/// A computer whose registry has one key with many values of the usual length.
class Computer {
public:
    explicit Computer(std::int64_t values) {
        std::string name = (std::filesystem::temp_directory_path() / "vex-bench-XXXXXX").native();
        if (::mkdtemp(name.data()) == nullptr) std::abort();
        folder_ = name;
        std::ofstream file(folder_ / "registry");
        file << kRegistryHeader << "[HKEY_LOCAL_MACHINE\\" << kPath << "]\n";
        for (std::int64_t i = 0; i < values; ++i) {
            file << '"' << name_of(i) << "\"=\"C:\\\\Program Files\\\\Brivola\\\\" << i << "\"\n";
        }
        file.close();
        service_.use_folder(folder_);
        if (service_.open_key(kRoot, kPath, kKeyAllAccess, key_) != kSuccess) std::abort();
    }
    Computer(const Computer&) = delete;
    Computer& operator=(const Computer&) = delete;
    ~Computer() { std::filesystem::remove_all(folder_); }

    void write(const std::string& name, const std::string& text) {
        const auto* data = reinterpret_cast<const std::uint8_t*>(text.c_str());
        if (service_.set_value(key_, name.c_str(), kRegSz, data, static_cast<std::uint32_t>(text.size() + 1)) !=
            kSuccess) {
            std::abort();
        }
    }

    RegistryService& service() { return service_; }
    RegistryKey key() const { return key_; }
    const std::filesystem::path& folder() const { return folder_; }

private:
    std::filesystem::path folder_;
    RegistryService service_{kCodePage};
    RegistryKey key_ = 0;
};

void open_store(benchmark::State& state) {
    Computer computer(state.range(0));
    for (auto _ : state) {
        RegistryService service(kCodePage);
        service.use_folder(computer.folder());
    }
}

void read_value(benchmark::State& state) {
    Computer computer(state.range(0));
    std::int64_t index = 0;
    for (auto _ : state) {
        const std::string name = name_of(index++ * 7919 % state.range(0));
        std::uint8_t data[1024];
        std::uint32_t size = sizeof data;
        std::uint32_t type = 0;
        benchmark::DoNotOptimize(computer.service().query_value(computer.key(), name.c_str(), type, data, size));
    }
}

/// The way of the host settings: open, read, close.
void get_registry_value(benchmark::State& state) {
    Computer computer(state.range(0));
    RegistryRoutines routines(computer.service(), kCodePage);
    routines.set_hKey(kHkeyLocalMachine);
    routines.set_KeyRoot(u"Software\\Norvan\\Brivola3\\Settings");
    for (auto _ : state) benchmark::DoNotOptimize(routines.GetRegistryValue(u"Setting number 1000042"));
}

void write_value(benchmark::State& state) {
    Computer computer(state.range(0));
    std::int64_t index = 0;
    for (auto _ : state) {
        computer.write(name_of(index * 7919 % state.range(0)), "D:\\Another folder\\" + std::to_string(index));
        ++index;
    }
}

void enumerate_values(benchmark::State& state) {
    Computer computer(state.range(0));
    for (auto _ : state) {
        std::int32_t result = kSuccess;
        for (std::uint32_t index = 0; result == kSuccess; ++index) {
            char name[260];
            std::uint32_t length = sizeof name;
            std::uint8_t data[1024];
            std::uint32_t size = sizeof data;
            std::uint32_t type = 0;
            result = computer.service().enum_value(computer.key(), index, name, length, type, data, size);
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(open_store)->Arg(100)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(read_value)->Arg(100)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(get_registry_value)->Arg(100)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(write_value)->Arg(100)->Arg(10'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(enumerate_values)->Arg(100)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vex::platform::native
