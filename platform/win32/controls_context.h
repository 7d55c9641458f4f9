// The system's modern controls, whatever the host uses for its own windows.
#pragma once

#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

/// While one lives, windows that the thread makes use the version of the common controls that this module's
/// manifest (resource 3) asks for. Without the manifest they use the host's.
class ControlsContext {
public:
    /// Raises RuntimeError where the system has no common controls.
    ControlsContext();
    ControlsContext(const ControlsContext&) = delete;
    ControlsContext& operator=(const ControlsContext&) = delete;
    ~ControlsContext();

private:
    ULONG_PTR cookie_ = 0;
    bool active_ = false;
};

/// Functions of the common controls' library, which is loaded by the first context.
struct CommonControls {
    decltype(InitCommonControlsEx)* init;
    decltype(ImageList_Create)* create_image_list;
    decltype(ImageList_ReplaceIcon)* replace_icon;
    decltype(ImageList_Destroy)* destroy_image_list;
};

/// To be called first while a context lives.
const CommonControls& common_controls();

inline void destroy_image_list(HIMAGELIST list) noexcept { common_controls().destroy_image_list(list); }
using OwnedImageList = Owned<HIMAGELIST, destroy_image_list>;

}  // namespace vex::platform::win32
