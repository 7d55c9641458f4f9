// The native side.
#include "tests/plugin/side.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "platform/native/machine.h"

namespace vex::plugin_test {

void* plugin_export(const char* name) {
    static void* const library = [] {
        const char* path = std::getenv("VEX_PLUGIN");
        const auto beside = std::filesystem::read_symlink("/proc/self/exe").replace_filename("libvexFirmwarePlugin.so");
        void* loaded = dlopen(path != nullptr ? path : beside.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (loaded == nullptr) throw std::runtime_error(dlerror());
        return loaded;
    }();
    return dlsym(library, name);
}

platform::Registry& registry() { return platform::native::registry(); }

platform::Files& files() { return platform::native::files(); }

}  // namespace vex::plugin_test
