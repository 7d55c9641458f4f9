// One run of the simulated host.
#include "simulator/run.h"

#include <exception>

#include "core/runtime_error.h"
#include "simulator/host.h"
#include "simulator/host_classes.h"
#include "simulator/plugin_host.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

constexpr char16_t kDisplayFile[] = u"C:\\Brivola\\Displays.dat";
constexpr char kUnitFile[] = "Units.dat";

void load(Host& host, const std::filesystem::path& unit_file) {
    host.display_file = host.computer.writable_path(kDisplayFile);
    if (std::filesystem::exists(host.display_file)) {
        host.displays = Displays::load(host.display_file);
    } else {
        host.displays_changed = true;
    }
    if (std::filesystem::exists(unit_file)) host.units = Units::load(unit_file);
}

}  // namespace

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
        errors << error.what() << '\n';
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
        return ScenarioPlayer(scenario, host, screen, plugin, errors, folders.scenario).play();
    });
}

}  // namespace vex::sim
