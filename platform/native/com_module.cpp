// Where a module of the native process lies on the simulated computer.
#include "platform/native/com_module.h"

#include <dlfcn.h>

#include "core/runtime_error.h"

namespace vex::platform::native {

std::u16string module_path(const void* address) {
    Dl_info info{};
    if (dladdr(address, &info) == 0 || info.dli_fname == nullptr) {
        throw RuntimeError(kCannotCreateObject, u"The module's path is unknown");
    }
    return drive_path(std::filesystem::absolute(info.dli_fname));
}

}  // namespace vex::platform::native
