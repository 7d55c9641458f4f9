// Where an object of the host raises its events: a seam, since only Windows has type descriptions to ask.
#pragma once

#include <string_view>

#include "com/com_ptr.h"

namespace vex::platform {

/// The connection point of an object's default source interface.
struct EventSource {
    com::ComPtr<IConnectionPoint> point;
    IID iid;
    /// The dispatch id of the event asked for.
    DISPID member;
};

/// Finds the default source interface of `object` and in it the event `name`: by name where a type
/// description offers it, else by `position`. Raises 459 when the object offers no events.
EventSource find_event_source(IUnknown& object, std::u16string_view name, DISPID position);

}  // namespace vex::platform
