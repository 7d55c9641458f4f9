// The plug-in's library file as a host has it, and the registry of the side that is tested.
#pragma once

#include "com/com.h"
#include "platform/files.h"
#include "platform/registry.h"

namespace vex::plugin_test {

/// The address of an exported function, or null. The library is the one that the environment variable
/// VEX_PLUGIN names, else the one beside the test program; it is loaded once and stays.
void* plugin_export(const char* name);

platform::Registry& registry();
platform::Files& files();

}  // namespace vex::plugin_test
