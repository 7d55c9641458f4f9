// The Windows side.
#include "platform/win32/windows_api.h"
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {

std::filesystem::path plugin_file() {
    return std::filesystem::path(platform::win32::module_path()).replace_filename("vexFirmwarePlugin.dll");
}

const char* const kPlatform = sizeof(void*) == 8 ? "win64" : "win32";
const bool kAnyFolderIsRegistered = true;

bool is_icon(IDispatch& object) {
    com::ComPtr<IPicture> picture;
    SHORT type = 0;
    OLE_XSIZE_HIMETRIC width = 0;
    // 16 pixels of 1/96 inch, in 1/100 mm.
    return object.QueryInterface(IID_IPicture, picture.put_void()) == S_OK && picture->get_Type(&type) == S_OK &&
           picture->get_Width(&width) == S_OK && type == PICTYPE_ICON && width >= 422 && width <= 424;
}

}  // namespace vex::plugin_test
