// The native side: the simulated computer.
#include "com/native/server.h"
#include "core/runtime_error.h"
#include "plugin/module.h"

namespace vex::plugin {

com::ComPtr<IPictureDisp> load_icon(std::int16_t id) {
    if (id != kFirstIcon) throw RuntimeError(kResourceNotFound);
    return com::native::create_picture();
}

std::u16string module_path() {
    static constexpr char kAnchor{};
    return com::native::module_path(&kAnchor);
}

// The library is that of the 32-bit product, whatever machine runs the substitute.
const char16_t* const kTypeLibraryPlatform = u"win32";

}  // namespace vex::plugin
