// What an update run costs: through the plug-in against the same host calls replayed bare, side by side.
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "bench/recording.h"
#include "core/unicode.h"
#include "forms/scripted_toolkit.h"
#include "platform/native/machine.h"
#include "platform/registry.h"
#include "simulator/class_library.h"
#include "simulator/native/native_session.h"
#include "simulator/words.h"
#include "support/services.h"
#include "support/text.h"
#include "update/dlg_disp_updater.h"
#include "wizard/dlg_firmware_wizard.h"

namespace vex::bench {
namespace {

using Clock = std::chrono::steady_clock;

double milliseconds(const std::function<void()>& action) {
    const auto start = Clock::now();
    action();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Acts once when the modal loop is idle, then closes what is open.
class User final : public forms::ScriptedUser {
public:
    std::function<void(forms::Form&)> once;

    bool act(forms::Form& form) override {
        const auto action = std::exchange(once, nullptr);
        if (action) action(form);
        return action && form.running();
    }
};

/// A simulated host with displays of its own, and the services of a plug-in beside it.
class Bed {
public:
    explicit Bed(std::size_t displays, std::size_t known = SIZE_MAX) : host(trace_, computer_) {
        host.display_file = platform::native::real_path(u"C:\\Brivola\\Displays.dat");
        std::filesystem::create_directories(host.display_file.parent_path());
        for (std::size_t i = 0; i < displays; ++i) {
            const std::u16string name = u"Display " + decimal_text(static_cast<std::int32_t>(i));
            names += (i == 0 ? u"" : u",") + name;
            if (i >= known) continue;
            sim::Display display;
            display.name = name;
            display.port = u"COM" + decimal_text(static_cast<std::int32_t>(i));
            host.put_display(std::move(display));
        }
        host.choose_displays = [this] { return names; };
        host.save_displays();
    }

    std::u16string names;
    User user;
    forms::ScriptedToolkit toolkit{user};
    com::ModuleLifetime module;
    Services services{toolkit, platform::registry(), module, u"C:\\Host"};

private:
    std::ostringstream nowhere_;
    sim::Trace trace_{nowhere_, true};
    sim::NativeMachine computer_;

public:
    sim::Host host;
};

void run_through_plugin(Bed& bed, const std::u16string& firmware,
                        const std::function<void(forms::Form&)>& at_end = {}) {
    dlgDispUpdater updater(bed.services);
    updater.sDisplays = bed.names;
    updater.sFirmFile = firmware;
    updater.bJustReset = firmware.empty();
    bed.user.once = at_end;
    updater.show_modal();
}

struct Figures {
    double plugin, bare;
    std::size_t events;
};

/// The fastest of several rounds, plug-in and bare in turn.
Figures compare(std::size_t displays, const std::u16string& firmware, std::chrono::milliseconds link, int rounds) {
    Recording recording;
    {
        Bed bed(displays);
        const RecordedClasses recorded(recording, bed.host);
        const sim::HostClasses classes(bed.host);
        run_through_plugin(bed, firmware);
    }
    std::vector<double> plugin, bare;
    for (int round = 0; round < rounds; ++round) {
        for (const bool through_plugin : {true, false}) {
            Bed bed(displays);
            if (link.count() > 0)
                bed.host.on_link = [link](const sim::LinkEvent& event) {
                    // A download tells of its parts twenty times a unit.
                    if (event.kind == sim::LinkEvent::Kind::transfers) std::this_thread::sleep_for(link / 20.0);
                    return true;
                };
            const sim::HostClasses classes(bed.host);
            (through_plugin ? plugin : bare).push_back(milliseconds([&] {
                through_plugin ? run_through_plugin(bed, firmware) : recording.replay();
            }));
        }
    }
    return {std::ranges::min(plugin), std::ranges::min(bare), recording.size()};
}

std::u16string make_firmware() {
    const std::u16string path = u"C:\\fw\\new.SHX";
    const std::filesystem::path real = platform::native::real_path(path);
    std::filesystem::create_directories(real.parent_path());
    std::ofstream(real) << "S00600004844521B\nS1130000285F245F2212226A000424290008237C2A\nS9030000FC\n";
    return path;
}

void print_runs() {
    std::printf("update run, reset and clear, without link delay; goal: ratio 2 at most\n");
    std::puts("  displays   plug-in ms      bare ms    ratio   us per display         events");
    for (const std::size_t displays : {1, 10, 100, 1'000, 10'000}) {
        const Figures figures = compare(displays, {}, std::chrono::milliseconds(0), displays > 1000 ? 5 : 21);
        std::printf("%10zu %12.3f %12.3f %8.2f %16.2f %14zu\n", displays, figures.plugin, figures.bare,
                    figures.plugin / figures.bare, figures.plugin * 1000 / static_cast<double>(displays),
                    figures.events);
    }
    const Figures linked = compare(20, make_firmware(), std::chrono::milliseconds(50), 3);
    std::printf(
        "update run, firmware, 20 displays, 50 ms a unit: plug-in %.1f ms, bare %.1f ms, ratio %.4f; goal: 1.01\n",
        linked.plugin, linked.bare, linked.plugin / linked.bare);
}

void print_memory() {
    std::printf("memory of a finished run, per display\n");
    for (const std::size_t displays : {100, 1'000, 10'000}) {
        Bed bed(displays);
        const sim::HostClasses classes(bed.host);
        const std::size_t before = mallinfo2().uordblks;
        std::size_t after = before;
        run_through_plugin(bed, {}, [&](forms::Form&) { after = mallinfo2().uordblks; });
        std::printf("%10zu %12.0f bytes\n", displays,
                    static_cast<double>(after - before) / static_cast<double>(displays));
    }
}

/// Clicks the node of the step shown, so that everything on it is computed again.
double refresh_time(forms::Form& wizard) {
    forms::Control& tree = *wizard.find("picNavTree");
    std::vector<double> times;
    for (int i = 0; i < 21; ++i) {
        times.push_back(milliseconds([&] { wizard.raise_mouse_down(tree, forms::MouseButton::left, 700, 1500); }));
    }
    return std::ranges::min(times);  // the round that was disturbed least
}

void print_refresh() {
    std::printf("refresh of the display step; goal: linear, under 5 ms at 10000 rows\n");
    for (const std::size_t rows : {10, 100, 1'000, 10'000}) {
        // Few displays in the host's file: its reading is the host's cost, the rows are ours.
        Bed bed(rows, 10);
        const sim::HostClasses classes(bed.host);
        dlgFirmwareWizard wizard(bed.services, [](forms::Form&) {});
        bed.user.once = [rows](forms::Form& form) {
            for (const char* control : {"cmdNext", "opLoadFirmware", "cmdNext", "cmdChooseDisplay"})
                form.raise_click(*form.find(control));
            std::printf("%10zu rows %10.3f ms\n", rows, refresh_time(form));
            form.raise_click(*form.find("cmdCancel"));
        };
        wizard.show_modal();
    }
}

}  // namespace
}  // namespace vex::bench

/// With a number: one run of that many displays, to be watched by a profiler. Without: all figures.
int main(int count, char** arguments) {
    const vex::sim::PrivateFolder folder;
    vex::platform::native::use_machine_folder(folder.path());
    std::filesystem::create_directories(folder.path() / "drive_c");
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (count > 1) {
        vex::bench::Bed bed(std::stoul(arguments[1]));
        const vex::sim::HostClasses classes(bed.host);
        vex::bench::run_through_plugin(bed, {});
    } else {
        vex::bench::print_runs();
        vex::bench::print_memory();
        vex::bench::print_refresh();
    }
    CoUninitialize();
    return 0;
}
