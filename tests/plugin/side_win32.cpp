// The Windows side.
#include "tests/plugin/side.h"

#include <cstdlib>
#include <stdexcept>

#include "platform/win32/system.h"

namespace vex::plugin_test {

void* plugin_export(const char* name) {
    static const HMODULE library = [] {
        const char* path = std::getenv("VEX_PLUGIN");
        const HMODULE loaded = LoadLibraryA(path != nullptr ? path : "vexFirmwarePlugin.dll");
        if (loaded == nullptr) throw std::runtime_error("the plug-in cannot be loaded");
        return loaded;
    }();
    return reinterpret_cast<void*>(GetProcAddress(library, name));
}

platform::Registry& registry() { return platform::win32::registry(); }

platform::Files& files() { return platform::win32::files(); }

}  // namespace vex::plugin_test
