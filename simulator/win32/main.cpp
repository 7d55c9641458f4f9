// brivola-sim, the simulated host: the Windows program. It plays a scenario, or opens the wizard on the sample
// displays.
#include <exception>
#include <iostream>

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "platform/win32/system.h"
#include "simulator/command_line.h"
#include "simulator/display_picker.h"
#include "simulator/pace.h"
#include "simulator/unit_table.h"
#include "simulator/win32/program.h"
#include "simulator/win32/win32_session.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

constexpr char kSampleScenario[] = "trial.scn";
constexpr char16_t kFirmwareSettings[] = u"Software\\Norvan\\Brivola3\\Firmware";

/// Puts the sample displays into a host that has none.
ExitStatus install_samples(Win32Session& session, Host& host, PluginHost& plugin) {
    const std::filesystem::path samples = Win32Session::samples_folder();
    const Scenario sample = Win32Session::read_scenario(samples / kSampleScenario);
    const ExitStatus status = ScenarioPlayer(sample, host, session.screen(), plugin, std::cerr, samples).play();
    // The Open dialog shows the real disks, so it begins where the sample firmware really is.
    RegistryStore registry(host.computer.registry(), host.computer.code_page());
    registry.write_text(kHkeyLocalMachine, kFirmwareSettings, u"LastFilePath", samples.u16string());
    return status;
}

/// The host in front of its user.
ExitStatus play(Win32Session& session, const CommandLine& options, Host& host, PluginHost& plugin) {
    if (host.displays.size() == 0) {
        if (const ExitStatus installed = install_samples(session, host, plugin); installed != kPassed) return installed;
    }
    forms::Toolkit& desktop = platform::win32::desktop();
    host.choose_displays = [&] {
        DisplayPicker picker(desktop, host.displays);
        picker.show_modal();
        return picker.answer();
    };
    Pace pace(desktop, options.speed, [] { return false; });
    host.on_link = [&pace](const LinkEvent& event) {
        pace.follow(event);
        return true;
    };
    host.computer.on_program_started([](const std::u16string& path) {
        std::cout << "not started, since this is a simulation: " << to_utf8(path) << '\n';
    });
    ExitStatus status = kPassed;
    try {
        plugin.start(StartMember::StartPlugin, nullptr);
    } catch (const RuntimeError& error) {
        std::cerr << "the plug-in raised error " << error.number() << ": " << error.what() << '\n';
        status = kFailed;
    }
    host.computer.on_program_started(nullptr);
    host.on_link = nullptr;
    host.choose_displays = nullptr;
    print_units(host, std::cout);
    return status;
}

/// Opens the plug-in's wizard for a person in front of the desktop, and prints what the units hold when it is closed.
ExitStatus run_trial(Win32Session& session, const CommandLine& options) {
    session.computer().show_real_disks();
    std::ostream no_trace(nullptr);
    return run_host(session.computer(), session.folders(Win32Session::samples_folder()), true, no_trace, std::cerr,
                    [&](Host& host, PluginHost& plugin) { return play(session, options, host, plugin); });
}

}  // namespace
}  // namespace vex::sim

int main() {
    using namespace vex::sim;
    vex::sim::use_plain_streams();
    CommandLine options;
    try {
        options = parse_command_line(vex::sim::program_arguments());
    } catch (const std::exception& error) {
        std::cerr << "brivola-sim: " << error.what() << "; try --help\n";
        return kBadUsage;
    }
    if (options.help) {
        std::cout << usage();
        return kPassed;
    }
    try {
        Win32Session session(options);
        return options.scenario ? session.play(*options.scenario, std::cout, std::cerr) : run_trial(session, options);
    } catch (const TextError& error) {
        std::cerr << error.what() << '\n';
    } catch (const std::exception& error) {
        std::cerr << "brivola-sim: " << error.what() << '\n';
    }
    return kBadUsage;
}
