// brivola-sim, the simulated host: the Windows program. It plays a scenario, or opens the wizard on the sample
// displays.
#include <iostream>
#include <stdexcept>

#include "core/unicode.h"
#include "platform/win32/system.h"
#include "simulator/comparison.h"
#include "simulator/display_picker.h"
#include "simulator/pace.h"
#include "simulator/registry_editor.h"
#include "simulator/win32/program.h"
#include "simulator/win32/win32_session.h"

namespace vex::sim {
namespace {

constexpr char16_t kFirmwareSettings[] = u"Software\\Norvan\\Brivola3\\Firmware";

/// The host in front of its user.
ExitStatus play(const CommandLine& options, Host& host, PluginHost& plugin) {
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
    host.machine.on_program_started([](const std::u16string& path) {
        std::cout << "not started, since this is a simulation: " << to_utf8(path) << '\n';
    });
    const Units before = host.units;
    const ExitStatus status = Session::start(plugin, std::cerr);
    host.machine.on_program_started(nullptr);
    host.on_link = nullptr;
    host.choose_displays = nullptr;
    print_changed_units(host, before, std::cout);
    return status;
}

/// Opens the plug-in's wizard for a person in front of the desktop, and prints what the units hold when it is closed.
ExitStatus run_trial(Win32Session& session, const CommandLine& options) {
    session.machine().show_real_disks();
    return session.try_out(std::cerr, [&](Host& host, PluginHost& plugin, bool fresh) {
        // The Open dialog shows the real disks, so it begins where the sample firmware really is.
        if (fresh) {
            RegistryEditor registry(host.machine.registry(), host.machine.code_page());
            registry.write_text(kHkeyLocalMachine, kFirmwareSettings, u"LastFilePath",
                                session.samples_folder().u16string());
        }
        return play(options, host, plugin);
    });
}

}  // namespace
}  // namespace vex::sim

int main() {
    using namespace vex::sim;
    use_plain_streams();
    return run_program(program_arguments(), [](const CommandLine& options) -> int {
        if (options.controls) throw std::invalid_argument("controls are printed natively only");
        if (options.scenarios.empty()) {
            Win32Session session(options);
            return run_trial(session, options);
        }
        const auto play = [](const CommandLine& line, const std::string& file, std::ostream& out,
                             std::ostream& errors) { return Win32Session(line).play(file, out, errors); };
        if (options.compare) return compare_scenarios(options, play, std::cout);
        return play(options, options.scenarios.front(), std::cout, std::cerr);
    });
}
