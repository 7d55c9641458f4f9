// Lets memory end at every allocation of a whole road: registration, catalogue, wizard with About, a run over two
// displays with a retry, deregistration.
#include <gtest/gtest.h>
#include <link.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <new>
#include <thread>

#include "com/boundary.h"
#include "com/late_call.h"
#include "core/unicode.h"
#include "platform/library.h"
#include "platform/native/machine.h"
#include "platform/registry.h"
#include "tests/proof/rig.h"

namespace vex::proof {
namespace {

/// Where the code of a library lies.
struct Library {
    const char* file;
    std::uintptr_t begin = 0, end = 0;
    bool holds(std::uintptr_t place) const noexcept { return place >= begin && place < end; }
};

Library plugin_code{"libvexFirmwarePlugin.so"};
/// The simulated computer, whose registry would not live on the plug-in's memory.
Library system_code{"libvexmachine.so"};

/// A function of its own, where a debugger can stop.
[[gnu::noipa]] void* refuse() noexcept { return nullptr; }

void* allocate(std::size_t size, void* caller) noexcept {
    const auto from = reinterpret_cast<std::uintptr_t>(caller);
    if (memory.counting && (plugin_code.holds(from) || (memory.plugin_runs && !system_code.holds(from)))) {
        ++memory.counted;
        const bool after = memory.to_the_end && memory.counted > memory.refused;
        if (memory.refused != 0 && (memory.counted == memory.refused || after)) return refuse();
    }
    void* const place = std::malloc(size);
    if (place != nullptr) ++memory.alive;
    return place;
}

void release(void* place) noexcept {
    if (place != nullptr) --memory.alive;
    std::free(place);
}

}  // namespace
}  // namespace vex::proof

void* operator new(std::size_t size) {
    if (void* const place = vex::proof::allocate(size, __builtin_return_address(0))) return place;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return vex::proof::allocate(size, __builtin_return_address(0));
}
void operator delete(void* place) noexcept { vex::proof::release(place); }
void operator delete(void* place, std::size_t) noexcept { vex::proof::release(place); }
void operator delete(void* place, const std::nothrow_t&) noexcept { vex::proof::release(place); }

namespace vex::proof {
namespace {

constexpr GUID kCatalogue = {0x09D14609, 0x0E72, 0x4D6E, {0xA3, 0xB6, 0xD8, 0x40, 0x9C, 0x89, 0x77, 0x02}};
constexpr GUID kEntry = {0x4802794B, 0x38DD, 0x46AD, {0xA2, 0x90, 0xF2, 0x78, 0x25, 0xC7, 0x1C, 0xEA}};
constexpr HRESULT kErrorOutOfMemory = static_cast<HRESULT>(0x800A0000U | 7U);

int find_code(dl_phdr_info* module, std::size_t, void*) {
    for (Library* library : {&plugin_code, &system_code}) {
        if (!std::string_view(module->dlpi_name).ends_with(library->file)) continue;
        for (int i = 0; i < module->dlpi_phnum; ++i) {
            const auto& part = module->dlpi_phdr[i];
            if (part.p_type != PT_LOAD || (part.p_flags & PF_X) == 0) continue;
            library->begin = module->dlpi_addr + part.p_vaddr;
            library->end = library->begin + part.p_memsz;
        }
    }
    return 0;
}

platform::Library& plugin() {
    static platform::Library library(VEX_PLUGIN_LIBRARY);
    if (plugin_code.begin == 0) dl_iterate_phdr(find_code, nullptr);
    return library;
}

/// What the plug-in answered on the road, and what became of the run.
struct Travel {
    std::vector<HRESULT> answers;
    Outcome outcome;
    HRESULT can_unload = E_UNEXPECTED;
    bool half_registered = false;
    bool all_well() const {
        return std::ranges::all_of(answers, [](HRESULT answer) { return answer == S_OK; });
    }
};

/// The plug-in's calls, in order, as long as they succeed.
class Caller {
public:
    explicit Caller(std::vector<HRESULT>& answers) noexcept : answers_(answers) {}

    template <class Call>
    bool operator()(Call call) {
        if (!well_) return false;
        HRESULT answer = S_OK;
        {
            const Side side(Side::plugin);
            answer = call();
        }
        answers_.push_back(answer);
        return well_ = answer == S_OK;
    }

    bool invoke(IDispatch* object, DISPID member, WORD flags, std::initializer_list<com::Variant> arguments = {}) {
        return (*this)([&] {
            return guarded_method(IID_NULL, [&] { com::invoke(*object, member, flags, arguments); });
        });
    }

    com::ComPtr<IDispatch> create(REFCLSID clsid) {
        com::ComPtr<IDispatch> object;
        (*this)(
            [&] { return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.put_void()); });
        return object;
    }

private:
    std::vector<HRESULT>& answers_;
    bool well_ = true;
};

bool is_registered() {
    using namespace platform;
    for (const char* key : {"CLSID\\{09D14609-0E72-4D6E-A3B6-D8409C897702}", "vexFirmWarePlugin.vexFirmWareUtil",
                            "TypeLib\\{2D044802-8D89-4ECD-8C1F-F3529143EDDE}"}) {
        RegistryKey open = 0;
        if (registry().open_key(registry_key(kHkeyClassesRoot), key, kKeyRead, open) != kSuccess) continue;
        registry().close_key(open);
        return true;
    }
    return false;
}

bool is_work(const std::u16string& call) {
    return call == u"vexDispTrans.DownloadFirmware" || call == u"vexDispTrans.ResetAndClear";
}

using Export = HRESULT(STDAPICALLTYPE*)();

/// With a work step that fails and is tried again, or with a cancel in its midst.
Travel travel(Mode mode, std::size_t refused, bool to_the_end, const std::optional<Moment>& cancel) {
    Travel travel;
    bool failed_once = false;
    Plan plan;
    plan.mode = mode;
    plan.displays = 2;
    plan.moment = cancel;
    if (!cancel) {
        plan.meddle = [&](const std::u16string& call) -> std::optional<com::Variant> {
            if (!is_work(call) || std::exchange(failed_once, true)) return std::nullopt;
            return com::Variant::boolean(false);
        };
    }
    plan.start = [&](forms::Toolkit& toolkit) {
        platform::native::set_desktop(&toolkit);
        Caller call(travel.answers);
        memory.refused = refused;
        memory.to_the_end = to_the_end;
        memory.counted = 0;
        memory.counting = true;
        if (call([] { return plugin().function<Export>("DllRegisterServer")(); })) {
            if (const auto catalogue = call.create(kCatalogue)) {
                call.invoke(catalogue.get(), 0x68030004, DISPATCH_PROPERTYGET);
                for (DISPID member = 0x68030000; member < 0x68030004; ++member)
                    call.invoke(catalogue.get(), member, DISPATCH_PROPERTYGET, {com::Variant::int16(0)});
            }
            if (const auto entry = call.create(kEntry)) call.invoke(entry.get(), 0x60030000, DISPATCH_METHOD);
        }
        call([] { return plugin().function<Export>("DllUnregisterServer")(); });
        memory.counting = false;
        // One that fails takes back what it wrote; the simulated registry cannot do that without any memory.
        travel.half_registered = travel.answers.size() == 1 && !to_the_end && is_registered();
        plugin().function<Export>("DllUnregisterServer")();
        platform::native::set_desktop(nullptr);
    };
    // An apartment of its own, whose data goes with it.
    std::thread([&] {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        travel.outcome = play(plan);
        travel.can_unload = plugin().function<Export>("DllCanUnloadNow")();
        SetErrorInfo(0, nullptr);
        CoUninitialize();
    }).join();
    return travel;
}

void check(const Travel& travel) {
    constexpr HRESULT kAnswers[] = {S_OK, E_OUTOFMEMORY, kErrorOutOfMemory, SELFREG_E_CLASS, SELFREG_E_TYPELIB};
    for (const HRESULT answer : travel.answers)
        EXPECT_NE(std::ranges::find(kAnswers, answer), std::end(kAnswers)) << std::hex << answer;
    EXPECT_FALSE(travel.half_registered);
    EXPECT_EQ(travel.can_unload, S_OK);
    EXPECT_EQ(travel.outcome.host_objects, 0);
    const Outcome& outcome = travel.outcome;
    for (std::size_t row = 0; row < outcome.rows.size(); ++row) {
        if (outcome.rows[row] != u"Updated - ") continue;
        for (const std::u16string& unit : outcome.units.at(row)) EXPECT_NE(unit, u"as delivered");
    }
    if (const auto confirmed = outcome.calls_before_cancel) {
        ASSERT_GE(outcome.calls.size(), *confirmed + 2);
        EXPECT_EQ(outcome.calls[*confirmed], u"vexDispTrans.CancelTransmission");
        EXPECT_EQ(outcome.calls[*confirmed + 1], u"vexDispTrans.CloseConnection");
        // A status without memory is not written, and the one before stays.
        const std::u16string word = outcome.rows.empty() ? u"" : outcome.rows.front();
        EXPECT_TRUE(!travel.all_well() || word == u"Cancelled - " || word == u"Updating - ") << to_utf8(word);
    } else if (travel.all_well()) {
        const auto calls = [&](const char16_t* name) {
            return std::ranges::count(outcome.calls, std::u16string(name));
        };
        EXPECT_EQ(calls(u"vexDispTrans.OpenConnection"), calls(u"vexDispTrans.CloseConnection"));
    }
}

std::size_t number(const char* variable, std::size_t otherwise) {
    const char* const text = std::getenv(variable);
    return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

class MemoryTest : public ::testing::TestWithParam<std::tuple<Mode, bool, bool>> {};

TEST_P(MemoryTest, MayEndAtEveryAllocation) {
    const auto [mode, to_the_end, cancels] = GetParam();
    plugin();
    const std::vector<std::u16string> calls = travel(mode, 0, false, {}).outcome.calls;
    std::optional<Moment> cancel;
    for (auto [call, moment] : moments(calls)) {
        moment.cancel = forms::MessageAnswer::yes;
        if (cancels && !cancel && is_work(calls[call])) cancel = moment;
    }
    const Travel whole = travel(mode, 0, false, cancel);
    ASSERT_TRUE(whole.all_well());
    const std::size_t all = memory.counted;
    ASSERT_EQ(whole.outcome.rows_after_retry, (std::vector<std::u16string>(2, u"Updated - ")));
    // Every allocation only when it is asked for, by a step of 1.
    const std::size_t first = number("VEX_MEMORY_FIRST", 1), step = number("VEX_MEMORY_STEP", 79);
    std::size_t tried = 0;
    for (std::size_t refused = first; refused <= all; refused += step, ++tried) {
        SCOPED_TRACE("allocation " + std::to_string(refused));
        const long alive = memory.alive;
        check(travel(mode, refused, to_the_end, cancel));
        EXPECT_EQ(memory.alive, alive) << "a leak";
        if (HasFailure()) return;
    }
    std::cout << "memory ended at " << tried << " of " << all << " allocations\n";
}

INSTANTIATE_TEST_SUITE_P(OnceOrForGoodInARunOrACancel, MemoryTest,
                         ::testing::Combine(::testing::Values(Mode::firmware, Mode::reset), ::testing::Bool(),
                                            ::testing::Bool()));

/// What a process holds: allocations, open files and threads, and the size of the registry's file.
std::array<long, 4> holdings() {
    const auto entries = [](const char* folder) {
        return std::distance(std::filesystem::directory_iterator(folder), {});
    };
    const auto registry = platform::native::real_path(u"C:\\").parent_path() / "registry";
    return {memory.alive, entries("/proc/self/fd"), entries("/proc/self/task"),
            static_cast<long>(std::filesystem::file_size(registry))};
}

TEST(Runs, LeaveNothingBehindAndDoNotSlowDown) {
    Plan plan;
    plan.displays = 100;
    std::vector<std::chrono::steady_clock::duration> took;
    const auto play_once = [&] {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(play(plan).rows, std::vector<std::u16string>(plan.displays, u"Updated - "));
        took.push_back(std::chrono::steady_clock::now() - begin);
    };
    took.reserve(number("VEX_RUNS", 20) + 2);
    play_once();
    play_once();
    const auto before = holdings();
    while (took.size() < took.capacity()) play_once();
    EXPECT_EQ(holdings(), before);
    std::cout << took.size() << " runs of " << plan.displays
              << " displays; microseconds of the fastest among the first ";
    const auto fastest = [](auto begin) {
        return std::chrono::duration_cast<std::chrono::microseconds>(*std::min_element(begin, begin + 10)).count();
    };
    std::cout << "and the last ten: " << fastest(took.begin()) << ", " << fastest(took.end() - 10) << '\n';
    EXPECT_LT(fastest(took.end() - 10), 3 * fastest(took.begin()));
}

}  // namespace
}  // namespace vex::proof
