// One run of the simulated host.
#include "simulator/run.h"

#include <exception>

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "simulator/host.h"
#include "simulator/host_classes.h"
#include "simulator/plugin_host.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

constexpr char kUnitFile[] = "Units.dat";

void load(Host& host, const std::filesystem::path& unit_file) {
    host.display_file = host.computer.writable_path(Host::kDisplayFile);
    if (std::filesystem::exists(host.display_file)) {
        host.displays = Displays::load(host.display_file);
    } else {
        host.displays_changed = true;
    }
    if (std::filesystem::exists(unit_file)) host.units = Units::load(unit_file);
}

}  // namespace

std::string message_of(const std::exception& error) {
    const auto* const known = dynamic_cast<const RuntimeError*>(&error);
    if (known == nullptr) return error.what();
    // The number of what simply went wrong says nothing more.
    const std::string text = to_utf8(known->description());
    return known->number() == kAutomationError ? text : text + " (error " + std::to_string(known->number()) + ")";
}

ExitStatus run_host(Computer& computer, const RunFolders& folders, bool quiet, std::ostream& out, std::ostream& errors,
                    const std::function<ExitStatus(Host& host, PluginHost& plugin)>& work) {
    Trace trace(out, quiet);
    Host host(trace, computer);
    const std::filesystem::path unit_file = folders.data / kUnitFile;
    ExitStatus status = kBadUsage;
    bool left_behind = false;
    try {
        load(host, unit_file);
        const HostClasses classes(host);
        PluginHost plugin(folders.plugin_library);
        status = work(host, plugin);
        host.save_displays();
        host.units.save(unit_file);
        if (!plugin.can_unload()) {
            errors << "the plug-in still has living objects\n";
            left_behind = true;
        }
    } catch (const std::exception& error) {
        errors << message_of(error) << '\n';
        return kBadUsage;
    }
    if (host.lifetime.objects() != 0) {
        errors << host.lifetime.objects() << " of the host's objects were not released\n";
        left_behind = true;
    }
    return status == kPassed && left_behind ? kFailed : status;
}

ExitStatus run_scenario(const Scenario& scenario, Computer& computer, Screen& screen, const RunFolders& folders,
                        bool quiet, std::ostream& out, std::ostream& errors) {
    return run_host(computer, folders, quiet, out, errors, [&](Host& host, PluginHost& plugin) {
        const ExitStatus status = ScenarioPlayer(scenario, host, screen, plugin, errors, folders.scenario).play();
        if (out.flush()) return status;
        errors << "the trace cannot be written\n";
        return status == kPassed ? kFailed : status;
    });
}

}  // namespace vex::sim
