// What the dialogs need of the outside, handed down from the composition in plugin/.
#pragma once

#include <string>

#include "com/object.h"
#include "core/product.h"
#include "forms/toolkit.h"
#include "platform/registry.h"

namespace vex {

/// One per apartment; outlives every dialog and is used on the apartment's thread only.
struct Services {
    forms::Toolkit& toolkit;
    platform::Registry& registry;
    /// Counts what keeps the library loaded.
    com::ModuleLifetime& module;
    /// The folder of the plug-in's own library file, normally without a trailing backslash.
    std::u16string module_folder;
};

}  // namespace vex
