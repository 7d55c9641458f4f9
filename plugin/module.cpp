// The plug-in's module.
#include "plugin/module.h"

#include <memory>

#include "platform/system.h"
#include "support/file_routines.h"

namespace vex::plugin {
namespace {

/// The start-up procedure of an apartment.
void Main(ModuleData& data) {
    // The identifier's spelling differs from the registered one in letter case; kept, as hosts read it here and
    // identifiers are looked up without regard to case.
    data.sPluginNames[0] = u"vexFirmwarePlugin.vexFirmwareUtil";
    data.sPluginDescriptions[0] = u"Reset and Clear Display and also Load Firmware!";
    data.sPluginDescriptiveNames[0] = u"Reset & Clear/Load Firmware";
}

}  // namespace

com::ModuleLifetime& module_lifetime() noexcept {
    static com::ModuleLifetime instance;
    return instance;
}

ModuleData& module_data() {
    thread_local std::unique_ptr<ModuleData> data;
    if (!data) {
        auto fresh = std::make_unique<ModuleData>();
        Main(*fresh);
        data = std::move(fresh);
    }
    return *data;
}

const Services& services() {
    ModuleData& data = module_data();
    if (!data.services) {
        data.services.emplace(Services{.toolkit = platform::desktop(),
                                       .registry = platform::registry(),
                                       .module = module_lifetime(),
                                       .module_folder = GetPathOnly(module_path())});
    }
    return *data.services;
}

void show_about(forms::Form& owner) {
    ModuleData& data = module_data();
    if (!data.about) data.about.emplace(services());
    data.about->show_modal(&owner);
}

}  // namespace vex::plugin
