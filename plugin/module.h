// The plug-in's module: what keeps it loaded, and the data that every apartment has of its own.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "about/frm_about.h"
#include "com/object.h"
#include "support/services.h"

namespace vex::plugin {

/// Counts the objects and locks that keep the library loaded. Process-wide.
com::ModuleLifetime& module_lifetime() noexcept;

/// The data of one apartment, used on its thread only.
struct ModuleData {
    /// One element for each feature that the library contributes.
    using Table = std::array<std::u16string, 1>;

    Table sPluginNames;
    Table sPluginDescriptions;
    Table sPluginDescriptiveNames;

    /// Made when the first dialog of the apartment needs them: the catalogue works without a windowing system.
    std::optional<Services> services;
    /// The shared About box, made on first use.
    std::optional<frmAbout> about;
};

/// The calling thread's module data. The first call of a thread runs the start-up procedure `Main`.
ModuleData& module_data();

/// The calling thread's services. Raises when the thread has no windowing system.
const Services& services();

/// Shows the apartment's About box over `owner`.
void show_about(forms::Form& owner);

}  // namespace vex::plugin
