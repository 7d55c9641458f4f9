// The container that an ActiveX control expects around itself.
#pragma once

#include <optional>

#include "com/com_ptr.h"
#include "platform/win32/control_window.h"

namespace vex::platform::win32 {

class ControlSite;

/// A control of the host in its place on a form, from construction to destruction: it has a client site with
/// ambient properties, is initialised as new, and is in-place active where it asks for that. Its window stays
/// hidden. An object that is no control is left alone; what a control refuses is tolerated, since its
/// methods and events do not depend on it.
class HostedControl {
public:
    /// `window`: the form's window for the control, outlives this.
    HostedControl(IUnknown& object, HWND window);
    HostedControl(const HostedControl&) = delete;
    HostedControl& operator=(const HostedControl&) = delete;
    ~HostedControl();

private:
    com::ComPtr<IOleObject> object_;
    com::ComPtr<ControlSite> site_;
};

class HostControlWindow final : public ControlWindow {
public:
    /// `control.object` is not null.
    HostControlWindow(Surface& parent, forms::HostControl& control, int id);

private:
    std::optional<HostedControl> hosted_;
};

}  // namespace vex::platform::win32
