// The plug-in's module: what keeps it loaded, what it takes from its side of the platform, and the data that every
// apartment has of its own.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "about/frm_about.h"
#include "com/object.h"
#include "support/services.h"

namespace vex::plugin {

/// Counts the objects and locks that keep the library loaded. Process-wide.
com::ModuleLifetime& module_lifetime() noexcept;

// ---- What each side of the platform answers in a source of its own; the build picks.

/// The full path of the plug-in's own library file.
std::u16string module_path();

/// What the registry calls the platform of the type library in this library file: win32 or win64.
extern const char16_t* const kTypeLibraryPlatform;

/// The icon of the first feature; further features would have the numbers that follow. No other icon of the
/// library has a number, so that an index without a feature finds no picture.
constexpr std::int16_t kFirstIcon = 101;

/// The library's icon of that number. Raises an error when there is none.
com::ComPtr<IPictureDisp> load_icon(std::int16_t id);

// ---- Apartments

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
