// The Windows side: the system itself.
#include "platform/win32/pictures.h"
#include "platform/win32/windows_api.h"
#include "plugin/module.h"

namespace vex::plugin {

com::ComPtr<IPictureDisp> load_icon(std::int16_t id) { return platform::win32::load_icon(id); }

std::u16string module_path() { return platform::win32::module_path(); }

const char16_t* const kTypeLibraryPlatform = sizeof(void*) == 8 ? u"win64" : u"win32";

}  // namespace vex::plugin
