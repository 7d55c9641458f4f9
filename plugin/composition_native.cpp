// The native side: the simulated computer.
#include "plugin/composition.h"

#include <span>

#include "com/native/server.h"
#include "core/runtime_error.h"
#include "platform/native/machine.h"
#include "plugin/embedded_icons.h"
#include "support/text.h"

namespace vex::plugin {
namespace {

class EmbeddedPictures final : public platform::Pictures {
public:
    com::ComPtr<IPictureDisp> load_icon(std::int16_t id) override {
        for (const EmbeddedIcon& icon : kEmbeddedIcons) {
            if (icon.id == id) return com::native::create_icon_picture(icon.file);
        }
        throw RuntimeError(kResourceNotFound);
    }
};

}  // namespace

platform::Registry& registry() { return platform::native::registry(); }

platform::Files& files() { return platform::native::files(); }

platform::Pictures& pictures() {
    static EmbeddedPictures instance;
    return instance;
}

const platform::CodePage& code_page() { return platform::native::code_page(); }

std::u16string module_path() {
    static constexpr char kAnchor = 0;
    return com::native::module_path(&kAnchor);
}

Services make_services(com::ModuleLifetime& module) {
    return {.toolkit = platform::native::desktop(),
            .registry = registry(),
            .files = files(),
            .processes = platform::native::processes(),
            .code_page = code_page(),
            .module = module,
            .module_folder = GetPathOnly(module_path())};
}

// The library is that of the 32-bit product, whatever machine runs the substitute.
const char* const kTypeLibraryPlatform = "win32";

}  // namespace vex::plugin
