// The system's modern controls, whatever the host uses for its own windows.
#pragma once

#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

/// While one lives, windows that the thread makes use the version of the common controls that this module's
/// manifest (resource 2) asks for. Without the manifest they use the host's.
class ControlsContext {
public:
    ControlsContext() noexcept;
    ControlsContext(const ControlsContext&) = delete;
    ControlsContext& operator=(const ControlsContext&) = delete;
    ~ControlsContext();

private:
    ULONG_PTR cookie_ = 0;
    bool active_ = false;
};

}  // namespace vex::platform::win32
