// brivola-sim, the simulated host: the Windows program. It plays a scenario, or opens the wizard on the sample
// displays.
#include <iostream>
#include <stdexcept>

#include "core/unicode.h"
#include "platform/system.h"
#include "simulator/registry_editor.h"
#include "simulator/trial.h"
#include "simulator/win32/win32_session.h"

namespace vex::sim {
namespace {

constexpr char16_t kFirmwareSettings[] = u"Software\\Norvan\\Brivola3\\Firmware";

/// Opens the plug-in's wizard for a person in front of the desktop, and prints what the units hold when it is closed.
int run_trial(const CommandLine& options) {
    Win32Session session(options);
    session.machine().show_real_disks();
    return session.try_out(std::cerr, [&](Host& host, PluginHost& plugin, bool fresh) {
        // The Open dialog shows the real disks, so it begins where the sample firmware really is.
        if (fresh)
            RegistryEditor().write({.key = kFirmwareSettings}, u"LastFilePath", u"sz",
                                   session.samples_folder().u16string());
        forms::Toolkit& desktop = platform::desktop();
        RunProgress progress(host);
        const Trial trial(host, desktop, progress, Pace(desktop, options.speed, [] { return false; }));
        host.machine.on_program_started([](const std::u16string& path) {
            std::cout << "not started, since this is a simulation: " << to_utf8(path) << '\n';
        });
        const Units before = host.units;
        const ExitStatus status = Session::start(plugin, std::cerr);
        host.machine.on_program_started(nullptr);
        print_changed_units(host, before, std::cout);
        return status;
    });
}

int print_controls(const CommandLine& /*options*/) {
    throw std::invalid_argument("controls are printed natively only");
}

}  // namespace
}  // namespace vex::sim

int main() {
    using namespace vex::sim;
    use_plain_streams();
    const auto play = [](const CommandLine& options, const std::string& file, std::ostream& out, std::ostream& errors) {
        return Win32Session(options).play(file, out, errors);
    };
    return run_program(program_arguments(), {play, run_trial, print_controls});
}
